#include "RcList.h"

#include "PackageTypes.h"
#include "StickEntry.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <algorithm>
#include <dirent.h>
#include <optional>
#include <utility>
#include <vector>

namespace {

// One entry of the stick's directory as the listing found it, judged when a pattern first
// matches it.
struct ListedEntry
{
    QString name;
    StickDirectory::Kind kind;
    std::optional<StickEntry> verdict;
    bool reported = false;
};

// A name as the toolkit's directory listing gives it, or nothing for a name it leaves out
// because its bytes do not survive decoding and encoding again. The listing decodes whole
// paths, so a byte order mark at the start of a name is kept as a character: hence the '/'.
std::optional<QString> decodedName(const char *bytes)
{
    const QByteArray name = QByteArray::fromRawData(bytes, static_cast<int>(qstrlen(bytes)));
    const bool ascii = std::all_of(name.cbegin(), name.cend(),
                                   [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    if (ascii)
        return QString::fromLatin1(name);
    const QString text = QFile::decodeName('/' + name).mid(1);
    if (QFile::encodeName(text) != name)
        return std::nullopt;
    return text;
}

StickDirectory::Kind kindOf(unsigned char type)
{
    switch (type) {
    case DT_REG:
        return StickDirectory::Kind::File;
    case DT_DIR:
        return StickDirectory::Kind::Folder;
    case DT_LNK:
    case DT_UNKNOWN:
        return StickDirectory::Kind::Unknown;
    default:
        return StickDirectory::Kind::Other;
    }
}

// What the toolkit's listing of dir with every kind of entry but hidden ones gives, name
// filters aside, sorted by name with case. Nothing when dir does not exist. Every name that is
// text, hidden ones too, goes to allNames.
std::optional<std::vector<ListedEntry>> listStick(const QString &dir, QStringList &allNames)
{
    const QDir directory(dir);
    if (!directory.exists())
        return std::nullopt;
    std::vector<ListedEntry> entries;
    DIR *listing = opendir(QFile::encodeName(directory.path()).constData());
    if (!listing)
        return entries;
    while (const dirent *entry = readdir(listing)) {
        std::optional<QString> name = decodedName(entry->d_name);
        if (name)
            allNames.append(*name);
        if (name && entry->d_name[0] != '.')
            entries.push_back({std::move(*name), kindOf(entry->d_type), std::nullopt});
    }
    closedir(listing);
    std::sort(entries.begin(), entries.end(),
              [](const ListedEntry &a, const ListedEntry &b) { return a.name < b.name; });
    return entries;
}

bool hasWildcard(QStringView text)
{
    return std::any_of(text.begin(), text.end(), [](QChar c) {
        return c == QLatin1Char('*') || c == QLatin1Char('?') || c == QLatin1Char('[') ||
               c == QLatin1Char(']');
    });
}

// One name pattern, matched as the toolkit's name filters match it: the whole name, ignoring
// case. The two shapes the table uses, "*.suffix" and a plain name, are compared directly, so
// the scan never needs the regular expression engine.
class NamePattern
{
public:
    explicit NamePattern(const QString &pattern)
    {
        if (!hasWildcard(pattern)) {
            shape = Whole;
            text = pattern;
        } else if (pattern.startsWith(QLatin1Char('*')) &&
                   !hasWildcard(QStringView(pattern).mid(1))) {
            shape = Suffix;
            text = pattern.mid(1);
        } else {
            expression.setPattern(QRegularExpression::wildcardToRegularExpression(pattern));
            expression.setPatternOptions(QRegularExpression::CaseInsensitiveOption);
        }
    }

    bool matches(const QString &name) const
    {
        switch (shape) {
        case Whole:
            return name.compare(text, Qt::CaseInsensitive) == 0;
        case Suffix:
            return name.endsWith(text, Qt::CaseInsensitive);
        case Other:
            break;
        }
        return expression.match(name).hasMatch();
    }

private:
    enum Shape { Whole, Suffix, Other } shape = Other;
    QString text;
    QRegularExpression expression;
};

bool matchesAny(const std::vector<NamePattern> &patterns, const QString &name)
{
    return std::any_of(patterns.begin(), patterns.end(),
                       [&name](const NamePattern &pattern) { return pattern.matches(name); });
}

} // namespace

RcList::RcList(const QString &dir) : dir(dir) {}

bool RcList::hasType(const QString &type) const
{
    for (const RcEntry &entry : entries) {
        if (entry.type == type)
            return true;
    }
    return false;
}

QStringList RcList::filesOfType(const QString &type) const
{
    QStringList files;
    for (const RcEntry &entry : entries) {
        if (entry.type == type)
            files.append(entry.file);
    }
    return files;
}

bool scanEveryType(RcList &list)
{
    QStringList allNames;
    std::optional<std::vector<ListedEntry>> listing = listStick(list.dir, allNames);
    if (!listing)
        return false;
    StickDirectory stick(list.dir);
    stick.knowEntries(allNames);
    for (const PackageType &type : PackageTypes::all()) {
        const QString key = type.typeKey();
        std::vector<NamePattern> patterns;
        for (const QString &pattern : type.patternList())
            patterns.emplace_back(pattern);
        for (ListedEntry &entry : *listing) {
            if (!matchesAny(patterns, entry.name))
                continue;
            if (!entry.verdict)
                entry.verdict = stick.classify(entry.name, entry.kind);
            if (entry.verdict->offered()) {
                const StickEntry asType = stick.classifyAs(type, entry.name, *entry.verdict);
                if (asType.offered()) {
                    list.entries.append({key, entry.name});
                } else if (!std::exchange(entry.reported, true)) {
                    qCDebug(lcStick) << entry.name
                                     << qUtf8Printable(QStringLiteral("is not offered as %1: %2")
                                                           .arg(type.name(), asType.reason()));
                }
            } else if (entry.verdict->worthReporting() && !entry.reported) {
                entry.reported = true;
                qCDebug(lcStick) << entry.name
                                 << "is not offered:" << qUtf8Printable(entry.verdict->reason());
            }
        }
    }
    return true;
}

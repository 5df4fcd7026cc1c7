#include "StickEntry.h"

#include "ClientPaths.h"
#include "PackageTypes.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdlib>
#include <dirent.h>
#include <optional>
#include <sys/stat.h>

Q_LOGGING_CATEGORY(lcStick, "usbi.stick")

namespace {

StickEntry judged(StickEntry::Verdict verdict, bool link, const QString &detail = QString())
{
    StickEntry entry;
    entry.verdict = verdict;
    entry.link = link;
    entry.detail = detail;
    return entry;
}

QString characterName(const QString &character)
{
    if (character == QLatin1String("\n"))
        return QStringLiteral("a line break");
    if (character == QLatin1String("\r"))
        return QStringLiteral("a carriage return");
    return QLatin1Char('\'') + character + QLatin1Char('\'');
}

// The path with every link resolved, as bytes: a target's name need not be UTF-8, and
// QFileInfo::canonicalFilePath() gives a link loop's own path back. Empty when it cannot be
// resolved, and then error says why.
QByteArray resolvedPath(const QString &path, int *error = nullptr)
{
    char *resolved = ::realpath(QFile::encodeName(path).constData(), nullptr);
    if (error)
        *error = resolved ? 0 : errno;
    QByteArray result(resolved);
    std::free(resolved);
    return result;
}

// The verdict the name alone gives once hidden files and folders are set aside; nothing when
// the name may be offered.
std::optional<StickEntry> refusedName(const QString &name, bool link)
{
    // A leading '-' would reach a client tool as an option: certs install "-x.crt".
    if (name.startsWith(QLatin1Char('-')))
        return judged(StickEntry::Verdict::RefusedName, link, QStringLiteral("-"));
    const QChar unsafe = shellUnsafeCharacter(name);
    if (!unsafe.isNull())
        return judged(StickEntry::Verdict::RefusedName, link, QString(unsafe));
    // The window would list a name other than the file installed: "root\u202Etrc.pem" shows as
    // "rootmep.crt".
    if (const std::optional<char32_t> misleading = misleadingCharacter(name))
        return judged(StickEntry::Verdict::MisleadingName, link,
                      QStringLiteral("U+%1").arg(*misleading, 4, 16, QLatin1Char('0')).toUpper());
    return std::nullopt;
}

// Entries by case-folded name, "." and ".." left out.
QHash<QString, QString> byFoldedName(const QStringList &names)
{
    QHash<QString, QString> folded;
    for (const QString &name : names) {
        if (name != QLatin1String(".") && name != QLatin1String(".."))
            folded.insert(name.toCaseFolded(), name);
    }
    return folded;
}

} // namespace

bool StickEntry::worthReporting() const
{
    return verdict != Verdict::Offered && verdict != Verdict::Hidden && verdict != Verdict::Folder;
}

QString StickEntry::reason() const
{
    switch (verdict) {
    case Verdict::Offered:
        break;
    case Verdict::Hidden:
        return QStringLiteral("a hidden file");
    case Verdict::Folder:
        return QStringLiteral("a folder");
    case Verdict::NotAFile:
        return QStringLiteral("not a regular file");
    case Verdict::RefusedName:
        return detail == QLatin1String("-")
                   ? QStringLiteral("a name beginning with '-'")
                   : QStringLiteral("a name holding %1").arg(characterName(detail));
    case Verdict::MisleadingName:
        return QStringLiteral("a name holding %1, which shows it as another name").arg(detail);
    case Verdict::DanglingLink:
        return QStringLiteral("a dangling link, to ") + detail;
    case Verdict::LinkLoop:
        return QStringLiteral("a link loop, through ") + detail;
    case Verdict::LinkToNonFile:
        return QStringLiteral("a link to something that is not a regular file: ") + detail;
    case Verdict::LeavesStick:
        return QStringLiteral("a link that leaves the stick, to ") + detail;
    case Verdict::BlankFreeName:
        return detail == QLatin1String("-")
                   ? QStringLiteral("a certificate whose name without blanks begins with '-'")
                   : QStringLiteral("a certificate whose name without blanks is taken on the "
                                    "stick, by ") +
                         detail;
    case Verdict::ClientTreeName:
        return QStringLiteral("named like one of the client's own files, ") + detail;
    }
    return {};
}

QChar shellUnsafeCharacter(const QString &text)
{
    for (const QChar c : text) {
        switch (c.unicode()) {
        case '$':
        case '`':
        case '"':
        case '\\':
        case ';':
        case '&':
        case '|':
        case '<':
        case '>':
        case '\r':
        case '\n':
            return c;
        default:
            break;
        }
    }
    return {};
}

std::optional<char32_t> misleadingCharacter(const QString &name)
{
    for (int i = 0; i < name.size(); ++i) {
        char32_t c = name.at(i).unicode();
        if (QChar::isHighSurrogate(c) && i + 1 < name.size() && name.at(i + 1).isLowSurrogate())
            c = QChar::surrogateToUcs4(name.at(i), name.at(i + 1));
        if (c < 0x20 || (c >= 0x7f && c <= 0x9f) || QChar::category(c) == QChar::Other_Format)
            return c;
    }
    return std::nullopt;
}

std::optional<RefusedDirectory> refusedMountDirectory(const QString &dir)
{
    if (dir.isEmpty())
        return RefusedDirectory{QStringLiteral("empty"), QString(),
                                QStringLiteral("it is empty, which would look at the working "
                                               "folder while installing from the root folder")};
    const QChar unsafe = shellUnsafeCharacter(dir);
    if (!unsafe.isNull())
        return RefusedDirectory{QStringLiteral("unsafe-character"), QString(unsafe),
                                QStringLiteral("it holds %1, which a shell command would act on")
                                    .arg(characterName(QString(unsafe)))};
    if (resolvedPath(QDir(dir).absolutePath()) == "/")
        return RefusedDirectory{QStringLiteral("root"), QString(),
                                QStringLiteral("it is the root folder, where no link would "
                                               "leave the stick")};
    return std::nullopt;
}

StickDirectory::StickDirectory(const QString &mountDir) : m_dir(mountDir)
{
    const QByteArray resolved = resolvedPath(QDir(mountDir).absolutePath());
    if (!resolved.isEmpty())
        m_resolved = resolved.endsWith('/') ? resolved : resolved + '/';
}

StickEntry StickDirectory::classify(const QString &name) const
{
    // Joined by hand: QDir::filePath() takes a name beginning with ':' for a resource path and
    // returns it alone, which would judge something else than the stick's entry.
    return classify(QFileInfo(QDir(m_dir).path() + QLatin1Char('/') + name));
}

StickEntry StickDirectory::classify(const QFileInfo &entry) const
{
    using V = StickEntry::Verdict;
    const QString name = entry.fileName();
    const bool link = entry.isSymLink();
    if (name.startsWith(QLatin1Char('.')))
        return judged(V::Hidden, link);
    if (!link && entry.isDir())
        return judged(V::Folder, link);
    if (const std::optional<StickEntry> refused = refusedName(name, link))
        return *refused;
    if (link)
        return followLink(entry);
    return judged(entry.isFile() ? V::Offered : V::NotAFile, link);
}

StickEntry StickDirectory::classify(const QString &name, Kind kind) const
{
    using V = StickEntry::Verdict;
    if (kind == Kind::Unknown)
        return classify(name);
    if (name.startsWith(QLatin1Char('.')))
        return judged(V::Hidden, false);
    if (kind == Kind::Folder)
        return judged(V::Folder, false);
    if (const std::optional<StickEntry> refused = refusedName(name, false))
        return *refused;
    return judged(kind == Kind::File ? V::Offered : V::NotAFile, false);
}

// A link is as good as its final target, and only while that target is a regular file on the
// stick: a link to /etc/shadow must never become the client's disclaimer.
StickEntry StickDirectory::followLink(const QFileInfo &entry) const
{
    using V = StickEntry::Verdict;
    int error = 0;
    const QByteArray target = resolvedPath(entry.absoluteFilePath(), &error);
    if (target.isEmpty())
        return judged(error == ELOOP ? V::LinkLoop : V::DanglingLink, true, entry.symLinkTarget());
    if (m_resolved.isEmpty() || !(target + '/').startsWith(m_resolved))
        return judged(V::LeavesStick, true, QFile::decodeName(target));
    struct stat status;
    if (::stat(target.constData(), &status) != 0 || !S_ISREG(status.st_mode))
        return judged(V::LinkToNonFile, true, QFile::decodeName(target));
    return judged(V::Offered, true);
}

StickEntry StickDirectory::classifyAs(const PackageType &type, const QString &name,
                                      const StickEntry &entry) const
{
    using V = StickEntry::Verdict;
    if (!entry.offered())
        return entry;
    if (type.copiedAs == CopiedAs::BlankFreeOnStick && name.contains(QLatin1Char(' '))) {
        // The installer copies the file to this name on the stick and hands it to a client tool.
        QString blankFree = name;
        blankFree.remove(QLatin1Char(' '));
        if (blankFree.startsWith(QLatin1Char('-')))
            return judged(V::BlankFreeName, entry.link, QStringLiteral("-"));
        const QString standing = standingAs(blankFree);
        if (!standing.isEmpty())
            return judged(V::BlankFreeName, entry.link, standing);
    }
    if (type.copiedAs == CopiedAs::InFilesFolder && clientpaths::isTreeName(name))
        return judged(V::ClientTreeName, entry.link,
                      clientpaths::filesDir() + QLatin1Char('/') + name);
    return entry;
}

StickEntry StickDirectory::judgeAgain(const PackageType &type, const QString &name) const
{
    struct stat status;
    const QByteArray path = QFile::encodeName(QDir(m_dir).path() + QLatin1Char('/') + name);
    if (::lstat(path.constData(), &status) != 0 && errno == ENOENT)
        return judged(StickEntry::Verdict::Offered, false);
    return classifyAs(type, name, classify(name));
}

void StickDirectory::knowEntries(const QStringList &names)
{
    m_listed = names;
}

QString StickDirectory::standingAs(const QString &name) const
{
    // Sticks are mostly FAT, where "AB.crt" and "ab.crt" are one file: compared case-folded,
    // whatever the file system here.
    // Names only, as readdir gives them: a listing that looks at each entry would cost much on
    // a large stick.
    if (!m_folded && !m_listed) {
        QStringList names;
        if (DIR *listing = opendir(QFile::encodeName(QDir(m_dir).path()).constData())) {
            while (const dirent *entry = readdir(listing))
                names.append(QFile::decodeName(entry->d_name));
            closedir(listing);
        }
        m_folded = byFoldedName(names);
    } else if (!m_folded) {
        m_folded = byFoldedName(*m_listed);
    }
    return m_folded->value(name.toCaseFolded());
}

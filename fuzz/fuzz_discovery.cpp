// libFuzzer target for package discovery. Each input (records: kind, suffix, target and length
// bytes, then that many name bytes; see build()) becomes a fresh stick, and what the scan of
// start-up offers and the debug lines it writes must be exactly what the directory gives: entries,
// kinds and link ends as the system reports them, the C library's UTF-8 decoder for which names
// are text, fnmatch against the type table's patterns (table, shell-unsafe and misleading
// characters and the client tree's names shared), and a certificate's blank-free name against
// every entry of the directory, case-folded.

#include "ClientPaths.h"
#include "PackageTypes.h"
#include "RcList.h"
#include "StickEntry.h"

#include <QDebug>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fnmatch.h>
#include <locale.h>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;
QStringList messages; // the scan's, kept rather than printed

// The name's text when its bytes are well-formed UTF-8 (mbstowcs lets code points above U+10FFFF
// through), else nothing: no other name can be spelt as text, so none may be listed. The '/'
// keeps a leading byte order mark, part of the name, which converting from UTF-32 drops.
QString textOf(const std::string &bytes)
{
    static const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    const locale_t before = uselocale(utf8); // here only: fnmatch below must fold ASCII case alone
    std::wstring text(bytes.size(), L'\0');
    const size_t length = std::mbstowcs(text.data(), bytes.c_str(), text.size());
    uselocale(before);
    text.resize(length == static_cast<size_t>(-1) ? 0 : length);
    const bool beyondUnicode =
        std::any_of(text.begin(), text.end(), [](wchar_t c) { return c > 0x10FFFF; });
    return beyondUnicode ? QString() : QString::fromStdWString(L'/' + text).mid(1);
}

// Why the name rule refuses an entry it offers as type: a certificate's name without blanks
// begins with '-' or names an entry already there in any letter case, an Imprivata picture is
// named like one of the client tree's own files. False when it does not.
bool refusedAs(const PackageType &type, const QString &text, const std::set<QString> &folded)
{
    QString blankFree = text;
    blankFree.remove(QLatin1Char(' '));
    if (type.copiedAs == CopiedAs::BlankFreeOnStick && blankFree != text)
        return blankFree.startsWith(QLatin1Char('-')) || folded.count(blankFree.toCaseFolded());
    return type.copiedAs == CopiedAs::InFilesFolder && clientpaths::isTreeName(text);
}

// Scans dir: type by type in table order and by name with case, it must offer each matching entry
// it looks at (text, not hidden, no folder) whose name may reach a shell (no shell-unsafe character
// or leading '-') and shows as itself (no control or format character), that is a file or links
// to one on the stick and that its type does not refuse, and report each other once.
void scanAndCheck(const std::string &dir)
{
    const std::string root = fs::canonical(dir).string() + '/';
    std::map<QString, std::pair<QByteArray, QString>> stick; // text: folded bytes, line
    std::set<QString> folded; // every entry's name that is text, case-folded
    for (const fs::directory_entry &entry : fs::directory_iterator(dir))
        folded.insert(textOf(entry.path().filename().string()).toCaseFolded());
    for (const fs::directory_entry &entry : fs::directory_iterator(dir)) {
        const std::string name = entry.path().filename().string();
        const QString text = textOf(name);
        if (name[0] == '.' || text.isEmpty() || fs::is_directory(entry.symlink_status()))
            continue;
        std::error_code error; // a dangling link or a link loop
        const std::string target = fs::canonical(entry.path(), error).string() + '/';
        const bool safe = !text.startsWith(QLatin1Char('-')) &&
                          shellUnsafeCharacter(text).isNull() && !misleadingCharacter(text);
        QString line; // how the line saying why it is not offered begins; empty when it is
        if (!safe || error || target.rfind(root, 0) != 0 ||
            !fs::is_regular_file(entry.status(error)))
            QDebug(&line).nospace() << text << " is not offered: ";
        // Name filters fold U+017F (long s) to 's' and U+212A (Kelvin) to 'k'; fnmatch folds ASCII.
        stick[text] = {
            QString(text).replace(QChar(0x17F), 's').replace(QChar(0x212A), 'k').toUtf8(), line};
    }
    RcList scan(QString::fromStdString(dir));
    messages.clear();
    qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext &, const QString &text) { messages.append(text); });
    QStringList got{QString::number(scanEveryType(scan))}, want{QStringLiteral("1")}, lines;
    std::set<QString> reported;
    for (const RcEntry &entry : scan.entries)
        got.append(entry.type + QLatin1Char('/') + entry.file);
    for (const PackageType &type : PackageTypes::all()) {
        const QByteArray patterns =
            "@(" + type.patternList().join(QLatin1Char('|')).toLatin1() + ')';
        for (const auto &[text, entry] : stick) {
            if (fnmatch(patterns.constData(), entry.first.constData(), FNM_CASEFOLD | FNM_EXTMATCH))
                continue;
            QString line = entry.second;
            if (line.isEmpty() && refusedAs(type, text, folded))
                QDebug(&line).nospace()
                    << text << " is not offered as " << qUtf8Printable(type.name()) << ": ";
            if (line.isEmpty())
                want.append(type.typeKey() + QLatin1Char('/') + text);
            else if (reported.insert(text).second)
                lines.append(line);
        }
    }
    for (int i = 0; i < messages.size(); ++i) // the reason after the name is the program's
        got.append(messages[i].left(lines.value(i).size()));
    if (got != want + lines)
        throw std::logic_error(qUtf8Printable(
            QStringLiteral("discovery differs:\n%1\ninstead of\n%2")
                .arg(got.join(QLatin1Char('\n')), (want + lines).join(QLatin1Char('\n')))));
}

// Makes the stick's entries. Kind byte modulo 12: 0 a file, 1 a hidden one, 2 a folder holding a
// picture, links (3) to an earlier entry, (4) to nothing, (5) to the stick or its parent, (6) to
// itself, 7 a FIFO, 8 a hard link to an earlier entry (the target byte picks it), links (9) to a
// device, (10, 11) to a file beside the stick, by absolute path and by "..". A suffix byte below
// twice the table's pattern count appends one without its '*' (odd bytes: in capitals). A file
// (0) whose target byte is 128 or more is instead a twin of an earlier entry: its name in
// capitals with a blank at the target byte's place, whose certificate copy would collide.
void build(const uint8_t *data, size_t size, const std::string &base)
{
    QStringList patterns;
    for (const PackageType &type : PackageTypes::all())
        patterns += type.patternList();
    const std::string stick = base + "/stick/";
    std::vector<std::string> made;
    size_t pos = 0;
    const auto next = [&] { return pos < size ? data[pos++] : uint8_t{0}; };
    while (pos < size && made.size() < 64) {
        const int kind = next() % 12, suffix = next(), target = next(); // in this order
        const auto earlier = [&]() -> std::string {
            return made.empty() ? "none" : made[target % made.size()];
        };
        std::string name = kind == 1 ? "." : "";
        for (int length = next(); length > 0 && pos < size; --length)
            if (const char c = static_cast<char>(next()); c != '/' && c != '\0')
                name += c;
        const QString pattern = patterns.value(suffix / 2).remove(QLatin1Char('*'));
        name += (suffix % 2 ? pattern.toUpper() : pattern).toStdString();
        if (kind == 0 && target >= 128 && !made.empty()) {
            name = QString::fromUtf8(earlier().c_str()).toUpper().toStdString();
            name.insert(std::min<size_t>(target % 8, name.size()), " ");
        }
        name.resize(std::min<size_t>(name.size(), 255));
        const std::string path = stick + name;
        const std::string links[] = {
            earlier(),   "no such file.jpg",    target % 2 ? "." : "..", name, "", "",
            "/dev/null", base + "/outside.jpg", "../outside.jpg"};
        bool ok = false;
        if (kind <= 1 || kind == 7)
            ok = mknod(path.c_str(), (kind == 7 ? S_IFIFO : S_IFREG) | 0644, 0) == 0;
        else if (kind == 2)
            ok = mkdir(path.c_str(), 0755) == 0 &&
                 mknod((path + "/inner.jpg").c_str(), S_IFREG | 0644, 0) == 0;
        else if (kind == 8)
            ok = link((stick + earlier()).c_str(), path.c_str()) == 0;
        else
            ok = symlink(links[kind - 3].c_str(), path.c_str()) == 0; // links[0] is kind 3
        if (ok)
            made.push_back(name);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string base = fs::temp_directory_path() / ("usbi-fuzz-" + std::to_string(getpid()));
    fs::create_directories(base + "/stick");
    mknod((base + "/outside.jpg").c_str(), S_IFREG | 0644, 0);
    build(data, size, base);
    scanAndCheck(base + "/stick");
    fs::remove_all(base);
    return 0;
}

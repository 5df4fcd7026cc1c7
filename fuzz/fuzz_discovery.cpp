// libFuzzer target for package discovery. Each input becomes the contents of a fresh temporary
// directory, the stick (names with any bytes but '/' and NUL, regular files, hidden files,
// subdirectories, links to files, to directories, to links, to a device and to nothing, link
// loops, links to a file beside the stick by absolute path and through "..", FIFOs, hard
// links); the scan of start-up runs on it, and what RcList offers is checked against the
// directory as POSIX readdir/lstat/stat/realpath and fnmatch see it, and against fourteen
// listings of the toolkit's own, one per type, which the scan's single listing must reproduce
// exactly. Any violation aborts.
//
// Input format: a sequence of records, read until the input ends or kMaxEntries were made:
//   kind byte, suffix byte, target byte, length byte, then up to length name bytes.
// '/' and NUL bytes of a name are dropped; the suffix byte may append a package suffix so that
// the fuzzer reaches matching names quickly; the target byte picks an earlier entry for links.
//
// The invariants, per package type, in the scan order of PackageTypes::all():
//  - Names. A file name on Linux is bytes; the program shows and uses it as UTF-16 text. A name
//    is valid when its bytes are well-formed UTF-8 (no overlong forms, no surrogates, nothing
//    above U+10FFFF); its text is then the UTF-16 of those code points, which the program turns
//    back into the same bytes when an installer opens the file. A name that is not valid UTF-8
//    cannot be spelt as text (decoding replaces the bad bytes with U+FFFD and several such names
//    would collapse into one that names no file), so it is never offered. Nothing offered may
//    be a name that is not in the directory.
//  - Order: each type's names are strictly ascending by UTF-16 code units, as QString compares
//    with case (so 'B' < 'a', and a character above U+FFFF, stored as a surrogate pair, sorts
//    before U+E000..U+FFFF). Strictly ascending also means each name occurs at most once.
//  - Kind: only regular files, and links whose target, fully resolved (realpath), is a regular
//    file inside the resolved stick; no directories, links to directories, dangling links, link
//    loops, FIFOs, links to devices or FIFOs, or links (direct or through a chain) to a file
//    outside the stick. Only the directory's own entries, no hidden ones (leading '.').
//  - Patterns: the name matches one of the type's patterns as a whole, without regard to case.
//    The toolkit folds case the Unicode way: besides ASCII pairs, U+017F LATIN SMALL LETTER
//    LONG S folds to 's' and U+212A KELVIN SIGN to 'k' (CaseFolding.txt, status C). Both are
//    mapped to their ASCII letter before fnmatch(FNM_CASEFOLD), so "ſcreenConnect.ClientSetup.deb"
//    counts as the Screen Connect package. Dotted and dotless i fold only in Turkic rules: no.
//  - Refused names: no name holding $ ` ; & | < > " \ CR or LF, or beginning with '-', is ever
//    offered.
//  - Completeness: every valid, eligible, matching, harmless name is offered.
//  - Debug lines: the scan writes exactly one line per entry that matches a pattern and is not
//    offered, however many types match it, except hidden files and folders.
//  - The list as a whole: entries grouped by type in scan order; hasType agrees with
//    filesOfType; the scan returns true.
//  - The oracle: the entries and the debug lines, in order, are those of fourteen separate
//    listings with the toolkit's QDir (name filters, every kind of entry, QDir::Name), one per
//    type, each entry judged by StickDirectory.

#include "PackageTypes.h"
#include "RcList.h"
#include "StickEntry.h"

#include <QByteArray>
#include <QDir>
#include <QFileInfo>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QtGlobal>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fnmatch.h>
#include <ftw.h>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr size_t kMaxEntries = 64;

// Debug lines written by the scan in progress; they are kept, not printed.
QStringList debugLines;

void keepDebugLines(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type == QtDebugMsg) {
        debugLines.append(message);
        return;
    }
    std::fprintf(stderr, "%s\n", qPrintable(message));
    if (type == QtFatalMsg)
        std::abort();
}
constexpr size_t kMaxNameBytes = 255;

// Suffixes the suffix byte can append; bytes beyond the list append nothing.
const char *const kSuffixes[] = {
    ".jpg",
    ".JPG",
    ".jpeg",
    ".Jpeg",
    ".gif",
    ".png",
    ".PNG",
    ".bmp",
    ".ppd",
    ".cer",
    ".CRT",
    ".pem",
    ".p12",
    ".der",
    ".pfx",
    ".tar",
    ".tzupg",
    ".ovpn",
    ".rdp",
    ".txt",
    ".HTML",
    "ScreenConnect.ClientSetup.deb",
    "screenconnect.clientsetup.DEB",
    ".jpg.txt",
};
constexpr size_t kSuffixCount = sizeof kSuffixes / sizeof kSuffixes[0];

enum Kind {
    RegularFile,
    HiddenFile,
    Subdirectory,
    LinkToEarlier,
    DanglingLink,
    LinkToDirectory,
    LinkLoop,
    Fifo,
    HardLink,
    LinkToDevice,
    LinkOutAbsolute,
    LinkOutRelative,
    KindCount
};

[[noreturn]] void fail(const char *what, const std::string &type, const std::string &detail)
{
    std::fprintf(stderr, "discovery invariant violated: %s (type %s): %s\n", what, type.c_str(),
                 detail.c_str());
    std::abort();
}

std::string hex(const std::string &bytes)
{
    static const char digits[] = "0123456789abcdef";
    std::string out;
    for (unsigned char c : bytes) {
        out += digits[c >> 4];
        out += digits[c & 15];
    }
    return out;
}

std::string hex16(const std::u16string &text)
{
    char unit[8];
    std::string out;
    for (char16_t c : text) {
        std::snprintf(unit, sizeof unit, "%04x ", static_cast<unsigned>(c));
        out += unit;
    }
    return out;
}

// Strict UTF-8 to UTF-16; nothing for malformed input.
std::optional<std::u16string> utf16Of(const std::string &bytes)
{
    std::u16string out;
    size_t i = 0;
    while (i < bytes.size()) {
        const unsigned char lead = static_cast<unsigned char>(bytes[i]);
        size_t extra;
        uint32_t cp;
        uint32_t minimum;
        if (lead < 0x80) {
            extra = 0, cp = lead, minimum = 0;
        } else if ((lead & 0xE0) == 0xC0) {
            extra = 1, cp = lead & 0x1F, minimum = 0x80;
        } else if ((lead & 0xF0) == 0xE0) {
            extra = 2, cp = lead & 0x0F, minimum = 0x800;
        } else if ((lead & 0xF8) == 0xF0) {
            extra = 3, cp = lead & 0x07, minimum = 0x10000;
        } else {
            return std::nullopt;
        }
        if (i + extra >= bytes.size())
            return std::nullopt;
        for (size_t k = 1; k <= extra; ++k) {
            const unsigned char c = static_cast<unsigned char>(bytes[i + k]);
            if ((c & 0xC0) != 0x80)
                return std::nullopt;
            cp = (cp << 6) | (c & 0x3F);
        }
        if (cp < minimum || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF))
            return std::nullopt;
        if (cp >= 0x10000) {
            out += static_cast<char16_t>(0xD800 + ((cp - 0x10000) >> 10));
            out += static_cast<char16_t>(0xDC00 + ((cp - 0x10000) & 0x3FF));
        } else {
            out += static_cast<char16_t>(cp);
        }
        i += extra + 1;
    }
    return out;
}

// The name with the two non-ASCII letters that fold onto ASCII letters replaced by them.
std::string foldedToAscii(const std::string &name)
{
    std::string out;
    for (size_t i = 0; i < name.size(); ++i) {
        if (name.compare(i, 2, "\xC5\xBF") == 0) {
            out += 's';
            i += 1;
        } else if (name.compare(i, 3, "\xE2\x84\xAA") == 0) {
            out += 'k';
            i += 2;
        } else {
            out += name[i];
        }
    }
    return out;
}

bool isHostile(const std::string &name)
{
    return name[0] == '-' || name.find_first_of("$`;&|<>\"\\\r\n") != std::string::npos;
}

struct DirectoryEntry
{
    std::string name;     // bytes, as readdir gives them
    std::u16string text;  // its UTF-16 text when the name is valid UTF-8
    bool valid = false;   // well-formed UTF-8
    bool folder = false;  // a directory itself, not a link to one
    bool regular = false; // a regular file, or a link ending at one inside the stick
};

// The entry is a regular file, or a link whose resolved target is a regular file inside root.
bool regularOnStick(const std::string &full, const std::string &root)
{
    struct stat st;
    if (lstat(full.c_str(), &st) != 0)
        return false;
    if (!S_ISLNK(st.st_mode))
        return S_ISREG(st.st_mode);
    char *resolved = realpath(full.c_str(), nullptr);
    if (!resolved)
        return false;
    const std::string target = resolved;
    std::free(resolved);
    return target.compare(0, root.size() + 1, root + '/') == 0 && stat(target.c_str(), &st) == 0 &&
           S_ISREG(st.st_mode);
}

std::vector<DirectoryEntry> readDirectory(const std::string &path)
{
    std::vector<DirectoryEntry> result;
    char *resolvedRoot = realpath(path.c_str(), nullptr);
    if (!resolvedRoot)
        fail("cannot resolve the test directory", "-", std::strerror(errno));
    const std::string root = resolvedRoot;
    std::free(resolvedRoot);
    DIR *dir = opendir(path.c_str());
    if (!dir)
        fail("cannot list the test directory", "-", std::strerror(errno));
    while (const dirent *d = readdir(dir)) {
        DirectoryEntry entry;
        entry.name = d->d_name;
        if (entry.name == "." || entry.name == "..")
            continue;
        const std::string full = path + '/' + entry.name;
        struct stat st;
        entry.folder = lstat(full.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
        entry.regular = regularOnStick(full, root);
        if (const auto text = utf16Of(entry.name)) {
            entry.valid = true;
            entry.text = *text;
        }
        result.push_back(entry);
    }
    closedir(dir);
    return result;
}

bool matchesType(const std::string &name, const PackageType &type)
{
    const std::string folded = foldedToAscii(name);
    const QByteArray patterns = QByteArray(type.patterns);
    for (const QByteArray &pattern : patterns.split(' ')) {
        if (!pattern.isEmpty() && fnmatch(pattern.constData(), folded.c_str(), FNM_CASEFOLD) == 0)
            return true;
    }
    return false;
}

// An entry the scans look at and either offer or report.
bool considered(const DirectoryEntry &entry)
{
    return entry.valid && !entry.folder && entry.name[0] != '.';
}

void checkInvariants(const std::string &path, const RcList &list, int skipLines)
{
    const std::vector<DirectoryEntry> directory = readDirectory(path);
    std::map<std::u16string, const DirectoryEntry *> byText;
    for (const DirectoryEntry &entry : directory) {
        if (entry.valid)
            byText[entry.text] = &entry;
    }

    if (list.dir != QString::fromStdString(path))
        fail("the directory changed", "-", list.dir.toStdString());

    // Entries grouped by type, in scan order.
    const auto &types = PackageTypes::all();
    size_t current = 0;
    for (const RcEntry &entry : list.entries) {
        while (current < types.size() && entry.type != QLatin1String(types[current].key))
            ++current;
        if (current == types.size())
            fail("entries not grouped by type in scan order", entry.type.toStdString(),
                 entry.file.toStdString());
    }

    for (const PackageType &type : types) {
        const QStringList files = list.filesOfType(type.typeKey());
        if (list.hasType(type.typeKey()) == files.isEmpty())
            fail("hasType disagrees with filesOfType", type.key, "");

        std::u16string previous;
        std::set<std::u16string> offered;
        for (int i = 0; i < files.size(); ++i) {
            const std::u16string text(reinterpret_cast<const char16_t *>(files[i].utf16()),
                                      static_cast<size_t>(files[i].size()));
            if (i > 0 && text < previous)
                fail("not sorted by name with case", type.key,
                     hex16(previous) + "> " + hex16(text));
            if (!offered.insert(text).second)
                fail("name offered twice", type.key, hex16(text));
            previous = text;

            const auto found = byText.find(text);
            if (found == byText.end())
                fail("offered a name that is not in the directory", type.key, hex16(text));
            const DirectoryEntry &entry = *found->second;
            if (!entry.regular)
                fail("offered something that is not a regular file or a link to one on the stick",
                     type.key, hex(entry.name));
            if (entry.name[0] == '.')
                fail("offered a hidden file", type.key, hex(entry.name));
            if (isHostile(entry.name))
                fail("offered a refused name", type.key, hex(entry.name));
            if (!matchesType(entry.name, type))
                fail("offered a name matching none of the type's patterns", type.key,
                     hex(entry.name));
        }

        for (const DirectoryEntry &entry : directory) {
            if (considered(entry) && entry.regular && !isHostile(entry.name) &&
                matchesType(entry.name, type) && offered.count(entry.text) == 0)
                fail("an eligible file was not offered", type.key, hex(entry.name));
        }
    }

    int skipped = 0;
    for (const DirectoryEntry &entry : directory) {
        if (!considered(entry) || (entry.regular && !isHostile(entry.name)))
            continue;
        skipped += std::any_of(types.begin(), types.end(), [&entry](const PackageType &type) {
            return matchesType(entry.name, type);
        });
    }
    if (skipLines != skipped)
        fail("not one debug line per skipped file", "all",
             std::to_string(skipLines) + " lines, " + std::to_string(skipped) + " files");
}

// The scan as fourteen separate listings of the toolkit's, one per type, each entry judged by
// StickDirectory: what the single listing must reproduce, entries and debug lines alike.
RcList listedPerType(const QString &dir)
{
    RcList list(dir);
    const StickDirectory stick(dir);
    QSet<QString> reported;
    for (const PackageType &type : PackageTypes::all()) {
        const QFileInfoList listing = QDir(dir).entryInfoList(
            type.patternList(), QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
        for (const QFileInfo &info : listing) {
            const StickEntry entry = stick.classify(info);
            if (entry.offered()) {
                list.entries.append({type.typeKey(), info.fileName()});
            } else if (entry.worthReporting() && !reported.contains(info.fileName())) {
                reported.insert(info.fileName());
                qCDebug(lcStick) << info.fileName()
                                 << "is not offered:" << qUtf8Printable(entry.reason());
            }
        }
    }
    return list;
}

void checkAgainstOracle(const RcList &list, const QStringList &lines)
{
    debugLines.clear();
    const RcList expected = listedPerType(list.dir);
    const int count = std::max(list.entries.size(), expected.entries.size());
    for (int i = 0; i < count; ++i) {
        const RcEntry got = list.entries.value(i);
        const RcEntry want = expected.entries.value(i);
        if (got.type != want.type || got.file != want.file)
            fail("the scan differs from fourteen listings", want.type.toStdString(),
                 "entry " + std::to_string(i) + ": " + hex16(got.file.toStdU16String()) +
                     "instead of " + hex16(want.file.toStdU16String()));
    }
    for (int i = 0; i < std::max(lines.size(), debugLines.size()); ++i) {
        if (lines.value(i) != debugLines.value(i))
            fail("the debug lines differ from fourteen listings'", "-",
                 "line " + std::to_string(i) + ": " + lines.value(i).toStdString() +
                     " instead of " + debugLines.value(i).toStdString());
    }
}

// Reads the input record by record and makes the directory's contents.
class Builder
{
public:
    // dir is the stick; outside, a regular file beside it.
    Builder(const uint8_t *data, size_t size, std::string dir, std::string outside)
        : m_data(data), m_size(size), m_dir(std::move(dir)), m_outside(std::move(outside))
    {
    }

    void build()
    {
        while (m_pos < m_size && m_made.size() < kMaxEntries) {
            const int kind = next() % KindCount;
            const uint8_t suffix = next();
            const uint8_t target = next();
            std::string name = takeName(next());
            if (suffix < kSuffixCount)
                name += kSuffixes[suffix];
            if (kind == HiddenFile)
                name.insert(0, 1, '.');
            if (name.size() > kMaxNameBytes)
                name.resize(kMaxNameBytes);
            if (name.empty() || name == "." || name == "..")
                continue;
            if (make(static_cast<Kind>(kind), name, target))
                m_made.push_back(name);
        }
    }

private:
    uint8_t next() { return m_pos < m_size ? m_data[m_pos++] : 0; }

    std::string takeName(size_t length)
    {
        std::string name;
        for (size_t i = 0; i < length && m_pos < m_size; ++i) {
            const char c = static_cast<char>(m_data[m_pos++]);
            if (c != '/' && c != '\0')
                name += c;
        }
        return name;
    }

    std::string earlier(uint8_t target) const
    {
        return m_made.empty() ? std::string("none") : m_made[target % m_made.size()];
    }

    bool make(Kind kind, const std::string &name, uint8_t target)
    {
        const std::string path = m_dir + '/' + name;
        switch (kind) {
        case RegularFile:
        case HiddenFile: {
            FILE *file = std::fopen(path.c_str(), "wx");
            return file && std::fclose(file) == 0;
        }
        case Subdirectory: {
            if (mkdir(path.c_str(), 0755) != 0)
                return false;
            // A matching file one level down must never be found.
            FILE *inner = std::fopen((path + "/inner.jpg").c_str(), "wx");
            return inner && std::fclose(inner) == 0;
        }
        case LinkToEarlier:
            return symlink(earlier(target).c_str(), path.c_str()) == 0;
        case DanglingLink:
            return symlink("no such file.jpg", path.c_str()) == 0;
        case LinkToDirectory:
            return symlink(target % 2 ? "." : "..", path.c_str()) == 0;
        case LinkLoop:
            return symlink(name.c_str(), path.c_str()) == 0;
        case Fifo:
            return mkfifo(path.c_str(), 0644) == 0;
        case HardLink:
            return link((m_dir + '/' + earlier(target)).c_str(), path.c_str()) == 0;
        case LinkToDevice:
            return symlink("/dev/null", path.c_str()) == 0;
        case LinkOutAbsolute:
            return symlink(m_outside.c_str(), path.c_str()) == 0;
        case LinkOutRelative:
            return symlink(("../" + m_outside.substr(m_outside.rfind('/') + 1)).c_str(),
                           path.c_str()) == 0;
        case KindCount:
            break;
        }
        return false;
    }

    const uint8_t *m_data;
    size_t m_size;
    size_t m_pos = 0;
    std::string m_dir;
    std::string m_outside;
    std::vector<std::string> m_made;
};

int removeEntry(const char *path, const struct stat *, int, struct FTW *)
{
    return remove(path);
}

std::string makeTemporaryDirectory()
{
    const char *tmp = std::getenv("TMPDIR");
    std::string pattern = std::string(tmp && *tmp ? tmp : "/tmp") + "/usbi-fuzz-XXXXXX";
    if (!mkdtemp(pattern.data()))
        fail("cannot create a temporary directory", "-", std::strerror(errno));
    return pattern;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    qInstallMessageHandler(keepDebugLines);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string base = makeTemporaryDirectory();
    const std::string dir = base + "/stick";
    const std::string outside = base + "/outside.jpg";
    FILE *file = std::fopen(outside.c_str(), "wx");
    if (mkdir(dir.c_str(), 0755) != 0 || !file || std::fclose(file) != 0)
        fail("cannot create the stick and the file beside it", "-", std::strerror(errno));
    Builder(data, size, dir, outside).build();

    RcList list(QString::fromStdString(dir));
    debugLines.clear();
    if (!scanEveryType(list))
        fail("scan of an existing directory returned false", "-", dir);
    const QStringList lines = debugLines;
    checkInvariants(dir, list, lines.size());
    checkAgainstOracle(list, lines);

    nftw(base.c_str(), removeEntry, 16, FTW_DEPTH | FTW_PHYS);
    return 0;
}

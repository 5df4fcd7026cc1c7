#include "StickEntry.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdlib>
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
    return std::nullopt;
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
    case Verdict::DanglingLink:
        return QStringLiteral("a dangling link, to ") + detail;
    case Verdict::LinkLoop:
        return QStringLiteral("a link loop, through ") + detail;
    case Verdict::LinkToNonFile:
        return QStringLiteral("a link to something that is not a regular file: ") + detail;
    case Verdict::LeavesStick:
        return QStringLiteral("a link that leaves the stick, to ") + detail;
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

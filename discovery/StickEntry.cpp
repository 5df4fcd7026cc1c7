#include "StickEntry.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdlib>

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
    const QString resolved = QDir(mountDir).canonicalPath();
    if (!resolved.isEmpty())
        m_resolved = resolved.endsWith(QLatin1Char('/')) ? resolved : resolved + QLatin1Char('/');
}

StickEntry StickDirectory::classify(const QString &name) const
{
    return classify(QFileInfo(QDir(m_dir).filePath(name)));
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
    // A leading '-' would reach a client tool as an option: certs install "-x.crt".
    if (name.startsWith(QLatin1Char('-')))
        return judged(V::RefusedName, link, QStringLiteral("-"));
    const QChar unsafe = shellUnsafeCharacter(name);
    if (!unsafe.isNull())
        return judged(V::RefusedName, link, QString(unsafe));
    if (link)
        return followLink(entry);
    return judged(entry.isFile() ? V::Offered : V::NotAFile, link);
}

// A link is as good as its final target, and only while that target is a regular file on the
// stick: a link to /etc/shadow must never become the client's disclaimer.
StickEntry StickDirectory::followLink(const QFileInfo &entry) const
{
    using V = StickEntry::Verdict;
    // Not QFileInfo::canonicalFilePath(): on a link loop it gives the link's own path back,
    // which would pass for a file on the stick.
    char *resolved = ::realpath(QFile::encodeName(entry.absoluteFilePath()).constData(), nullptr);
    if (!resolved) {
        const bool loop = errno == ELOOP;
        return judged(loop ? V::LinkLoop : V::DanglingLink, true, entry.symLinkTarget());
    }
    const QString target = QFile::decodeName(resolved);
    std::free(resolved);
    if (m_resolved.isEmpty() || !(target + QLatin1Char('/')).startsWith(m_resolved))
        return judged(V::LeavesStick, true, target);
    if (!QFileInfo(target).isFile())
        return judged(V::LinkToNonFile, true, target);
    return judged(V::Offered, true);
}

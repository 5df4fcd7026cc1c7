#ifndef STICKENTRY_H
#define STICKENTRY_H

#include <QByteArray>
#include <QChar>
#include <QLoggingCategory>
#include <QString>

class QFileInfo;

Q_DECLARE_LOGGING_CATEGORY(lcStick)

// Whether one entry of the stick's directory may be offered for installation, and if not, why.
// The installers build root shell commands from these names and copy what they point to, so
// this is the one place that decides which names and links reach them.
struct StickEntry
{
    enum class Verdict {
        Offered,
        Hidden,        // the name begins with '.'
        Folder,        // a folder itself (not a link to one)
        NotAFile,      // a device, FIFO or socket, or nothing by that name
        RefusedName,   // detail: the character the name is refused for
        DanglingLink,  // detail: where the link leads
        LinkLoop,      // detail: where the link leads
        LinkToNonFile, // a link ending at a folder, device, FIFO or socket; detail: that target
        LeavesStick,   // a link ending outside the mount directory; detail: that target
    };

    Verdict verdict = Verdict::Offered;
    bool link = false; // the entry itself is a symbolic link
    QString detail;

    bool offered() const { return verdict == Verdict::Offered; }
    // Hidden files and folders are left out silently; any other entry that is not offered is
    // worth a line to whoever wonders why a file on the stick is missing.
    bool worthReporting() const;
    // Why the entry is not offered, in words ("a link that leaves the stick, to /etc/shadow");
    // empty when it is offered.
    QString reason() const;
};

// The first character of text that a root shell command must never receive from a file name
// or the mount directory: one that ends, chains or redirects a command ($ ` ; & | < > and line
// breaks), or changes a double-quoted word (" \). A null QChar when there is none.
QChar shellUnsafeCharacter(const QString &text);

// The mount directory, resolved once, judging its own entries by name.
class StickDirectory
{
public:
    // What reading the directory tells of an entry without looking at it further: a regular
    // file, a folder, anything else that is not a link, or a link (or a file system that does
    // not say).
    enum class Kind { File, Folder, Other, Unknown };

    explicit StickDirectory(const QString &mountDir);

    StickEntry classify(const QString &name) const;
    // The same for an entry a listing of the mount directory returned, reusing what the
    // listing already knows of it.
    StickEntry classify(const QFileInfo &entry) const;
    // The same for an entry read from the directory itself: only a link, or an entry of
    // unknown kind, needs a further look at the disk.
    StickEntry classify(const QString &name, Kind kind) const;

private:
    StickEntry followLink(const QFileInfo &entry) const;

    QString m_dir;
    QByteArray m_resolved; // with a trailing '/', so that a prefix test means "inside"
};

#endif

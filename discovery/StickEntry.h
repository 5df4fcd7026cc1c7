#ifndef STICKENTRY_H
#define STICKENTRY_H

#include <QByteArray>
#include <QChar>
#include <QHash>
#include <QLoggingCategory>
#include <QString>
#include <QStringList>

#include <optional>

class QFileInfo;
struct PackageType;

Q_DECLARE_LOGGING_CATEGORY(lcStick)

// Whether one entry of the stick's directory may be offered for installation, and if not, why.
// The installers build root shell commands from these names and copy what they point to, so
// this is the one place that decides which names and links reach them.
struct StickEntry
{
    enum class Verdict {
        Offered,
        Hidden,         // the name begins with '.'
        Folder,         // a folder itself (not a link to one)
        NotAFile,       // a device, FIFO or socket, or nothing by that name
        RefusedName,    // detail: the character the name is refused for
        MisleadingName, // a control or format character; detail: its code point ("U+202E")
        DanglingLink,   // detail: where the link leads
        LinkLoop,       // detail: where the link leads
        LinkToNonFile,  // a link ending at a folder, device, FIFO or socket; detail: that target
        LeavesStick,    // a link ending outside the mount directory; detail: that target
        // Only for the type judged (StickDirectory::classifyAs):
        BlankFreeName,  // a certificate's blank-free name begins with '-' (detail "-") or is
                        // taken on the stick (detail: the entry standing there)
        ClientTreeName, // an Imprivata picture named like one of the client tree's own files;
                        // detail: that file
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

// The first character of a name that makes it show as another name: a control character
// (U+0000-U+001F, U+007F-U+009F) or a format character (the bidirectional controls, zero-width
// spaces and joiners, the byte order mark, ...). A null value when there is none.
std::optional<char32_t> misleadingCharacter(const QString &name);

// Why the program refuses a mount directory outright, before looking at it: it is empty (the
// working folder would be scanned while the installers read "/NAME"), it resolves to "/" (every
// link would then stay "on the stick"), or it holds a character of shellUnsafeCharacter().
struct RefusedDirectory
{
    QString code;   // "empty", "root" or "unsafe-character", for scripts
    QString detail; // the character, for "unsafe-character"
    QString why;    // in words: "it holds ';', which a shell command would act on"
};
std::optional<RefusedDirectory> refusedMountDirectory(const QString &dir);

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
    // What the rule adds for one package type, for an entry that classify() offers: a
    // certificate's blank-free name must not begin with '-' nor stand on the stick already in
    // any letter case (its copy is written there); an Imprivata picture must not be named like
    // one of the client tree's own files (it is copied to the top of that tree). The entry
    // itself when nothing is added.
    StickEntry classifyAs(const PackageType &type, const QString &name,
                          const StickEntry &entry) const;
    // The whole rule again for a file chosen for type, just before the commands that read it.
    // A file that is merely gone stays offered: its installer fails on it as it always did.
    StickEntry judgeAgain(const PackageType &type, const QString &name) const;
    // The directory's entries ("." and ".." may be among them), for a caller that has just
    // listed it: classifyAs() then needs no listing of its own.
    void knowEntries(const QStringList &names);

private:
    StickEntry followLink(const QFileInfo &entry) const;
    // The entry standing on the stick under name in any letter case, or an empty text.
    QString standingAs(const QString &name) const;

    QString m_dir;
    QByteArray m_resolved; // with a trailing '/', so that a prefix test means "inside"
    std::optional<QStringList> m_listed; // the entries a caller listed (knowEntries)
    // The stick's entries by case-folded name, made when first needed.
    mutable std::optional<QHash<QString, QString>> m_folded;
};

#endif

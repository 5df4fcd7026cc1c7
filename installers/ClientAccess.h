#ifndef CLIENTACCESS_H
#define CLIENTACCESS_H

#include <QList>
#include <QPair>
#include <QString>

#include <optional>

// What one step of an installer does to the client. A shell command line carries one so that
// the stick check can say what the line would do; the program only runs the line.
struct Effect
{
    enum class Kind {
        Runs,         // nothing the check follows beyond running the command's program
        Copies,       // source -> path
        MakesFolder,  // path
        Removes,      // path, possibly a shell pattern
        Links,        // path is made a link to source
        SetsKey,      // store path, key, value (or the content of the file source)
        SetsRegistry, // registry key path, value name key, value
    };

    Kind kind = Kind::Runs;
    QString path;
    QString source;
    QString key;
    QString value;
    bool keepsExisting = false; // Copies: an existing destination is left as it is

    static Effect copies(const QString &from, const QString &to);
    static Effect makesFolder(const QString &folder);
    static Effect removes(const QString &pathOrPattern);
    static Effect links(const QString &link, const QString &target);
    static Effect setsKey(const QString &store, const QString &key, const QString &value);
    // The value is the whole content of file, read when the command runs.
    static Effect setsKeyFromFile(const QString &store, const QString &key, const QString &file);
};

using KeyValues = QList<QPair<QString, QString>>;

// The one way installers reach the client. The program passes RealClient, which runs and
// writes; the stick check passes a planning client, which records and does nothing. Every
// effect of an installer and every fact of the client that changes what it does goes through
// here, so that the two cannot disagree.
class ClientAccess
{
public:
    ClientAccess() = default;
    virtual ~ClientAccess();
    ClientAccess(const ClientAccess &) = delete;
    ClientAccess &operator=(const ClientAccess &) = delete;

    // The client's settings are in the legacy INI registry rather than configuration stores.
    virtual bool isLegacyMode() = 0;
    // The client is the OS variant that carries the marker file.
    virtual bool hasOsVariantMarker() = 0;
    // The first line of the client's modality file with its line end; std::nullopt when the
    // client has none, an empty text when it cannot be read.
    virtual std::optional<QString> modality() = 0;
    // MD5 of a file on the client as 32 lower-case hexadecimal digits; empty when it cannot be
    // read.
    virtual QString digest(const QString &path) = 0;

    // Runs one command line through the client's shell, exactly as given, and waits for the
    // shell (a line ending in "&" returns at once). Its status is never looked at.
    virtual void run(const QString &commandLine, const Effect &effect = Effect()) = 0;
    // The toolkit's copy: never replaces an existing file.
    virtual void copyFile(const QString &from, const QString &to) = 0;
    // Makes a folder and its missing parents.
    virtual void makeFolder(const QString &folder) = 0;
    // Sets values in an existing configuration store, all at once; false, and nothing
    // written, when the store does not exist.
    virtual bool writeStore(const QString &store, const KeyValues &values) = 0;
    // Sets a text value under a key of the legacy registry (HKEY_LOCAL_MACHINE), creating
    // the key.
    virtual void writeRegistry(const QString &key, const QString &name, const QString &value) = 0;
};

#endif

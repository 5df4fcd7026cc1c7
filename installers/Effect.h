#ifndef EFFECT_H
#define EFFECT_H

#include <QString>

// What one step of an installer does to the client: what the stick check reports and what the
// program verifies after the installation.
struct Effect
{
    enum class Kind {
        Copies,       // source -> path
        MakesFolder,  // path
        Removes,      // path, possibly a shell pattern
        Links,        // path is made a link to source
        SetsKey,      // store path, key, value (or the content of the file source)
        SetsRegistry, // registry key path, value name key, value
    };

    Kind kind = Kind::Copies;
    QString path;
    QString source;
    QString key;
    QString value;
    bool keepsExisting = false; // Copies: an existing destination is left as it is

    static Effect copies(const QString &from, const QString &to);
    // The toolkit's copy, which leaves an existing destination as it is.
    static Effect copiesKeepingExisting(const QString &from, const QString &to);
    static Effect makesFolder(const QString &folder);
    static Effect removes(const QString &pathOrPattern);
    static Effect links(const QString &link, const QString &target);
    static Effect setsKey(const QString &store, const QString &key, const QString &value);
    // The value is the whole content of file, read when the command runs.
    static Effect setsKeyFromFile(const QString &store, const QString &key, const QString &file);
    // A text value under a key of the legacy registry's HKEY_LOCAL_MACHINE.
    static Effect setsRegistry(const QString &key, const QString &name, const QString &value);
};

#endif

#ifndef RCLIST_H
#define RCLIST_H

#include <QList>
#include <QString>
#include <QStringList>

// One found file of one package type.
struct RcEntry
{
    QString type; // type key
    QString file; // bare file name, as the file system spells it
};

// The packages found on the stick: filled once at start-up, read-only afterwards.
class RcList
{
public:
    explicit RcList(const QString &dir);

    bool hasType(const QString &type) const;
    QStringList filesOfType(const QString &type) const;

    QString dir;
    QList<RcEntry> entries;
};

// The scan of start-up. Lists list's directory once and appends, type by type in the table's
// scan order, every entry the type's patterns match (ignoring case) that StickDirectory
// offers as that type, sorted by name with case; no subdirectory's content, no name that is not
// valid in the file system's encoding. An entry that matches and is not offered gets one debug line
// saying why, however many types match it (hidden files and folders none). The result is that of
// one listing per type; only the directory is read once. False when the directory does not exist.
bool scanEveryType(RcList &list);

#endif

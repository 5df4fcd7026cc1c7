#ifndef RCLIST_H
#define RCLIST_H

#include <QList>
#include <QSet>
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

    // Appends one entry per file of dir matching patterns; false when dir does not exist.
    bool scan(const QString &type, const QStringList &patterns);
    bool hasType(const QString &type) const;
    QStringList filesOfType(const QString &type) const;

    QString dir;
    QList<RcEntry> entries;

private:
    QSet<QString> reported; // names skipped with a debug line: one line per file, not per type
};

// Scans list's directory once per package type, in the table's scan order, as start-up does.
void scanEveryType(RcList &list);

#endif

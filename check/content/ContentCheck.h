#ifndef CONTENTCHECK_H
#define CONTENTCHECK_H

#include "Finding.h"

#include <QDateTime>
#include <QList>
#include <QString>

struct PackageType;

// What the content readers judge against.
struct ContentOptions
{
    QDateTime now = QDateTime::currentDateTimeUtc(); // for certificates' validity
    QString arch = QStringLiteral("amd64");          // the client's Debian architecture
};

// Reads the content of the file name in dir, offered as types (one kind for all of them), with
// the reader for its kind.
ContentReport readContent(const QString &dir, const QString &name,
                          const QList<const PackageType *> &types, const ContentOptions &options);

// One file to read, and where its report goes.
struct ContentJob
{
    QString name;
    QList<const PackageType *> types;
    ContentReport *report;
};

// Reads every job's file, several at a time (as many as the machine has cores).
void readContents(const QString &dir, const QList<ContentJob> &jobs, const ContentOptions &options);

#endif

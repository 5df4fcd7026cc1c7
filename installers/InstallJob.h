#ifndef INSTALLJOB_H
#define INSTALLJOB_H

#include <QString>
#include <QStringList>

struct PackageType;

// One installation: the package type's row of the table, the directory on the stick and the
// chosen bare file names. The row is resolved once, where the job is built.
struct InstallJob
{
    InstallJob(const PackageType &type, const QString &dir, const QStringList &files)
        : type(&type), dir(dir), files(files)
    {
    }

    const PackageType *type; // never null
    QString dir;
    QStringList files;
};

#endif

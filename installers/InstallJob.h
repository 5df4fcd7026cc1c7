#ifndef INSTALLJOB_H
#define INSTALLJOB_H

#include <QString>
#include <QStringList>

// One installation: a package type, the directory on the stick and the chosen bare file names.
struct InstallJob
{
    InstallJob(const QString &type, const QString &dir, const QStringList &files)
        : type(type), dir(dir), files(files)
    {
    }

    QString type;
    QString dir;
    QStringList files;
};

#endif

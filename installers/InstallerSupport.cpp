#include "InstallerSupport.h"

#include "DaxSystem.h"
#include "InstallJob.h"

#include <QCryptographicHash>
#include <QFile>

namespace installers {

QString sourcePath(const InstallJob &job, const QString &file)
{
    return QStringLiteral("%1/%2").arg(job.dir, file);
}

void run(const QString &commandLine)
{
    DaxSystem::execShell(commandLine);
}

void run(const char *commandLine)
{
    run(QString::fromLatin1(commandLine));
}

void runAll(const QStringList &commandLines)
{
    for (const QString &commandLine : commandLines)
        run(commandLine);
}

QString pictureDigest(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QCryptographicHash hash(QCryptographicHash::Md5);
    if (!hash.addData(&file))
        return {};
    return QString::fromLatin1(hash.result().toHex());
}

} // namespace installers

#include "Installers.h"

#include "InstallJob.h"
#include "InstallerSupport.h"

#include <QDir>
#include <QFile>

namespace installers {

int installPrinterDrivers(InstallJob *job)
{
    // The absolute path makes /config/files/ppd at the root, not the driver folder.
    QDir(QStringLiteral("/tmp")).mkpath(QStringLiteral("/config/files/ppd"));
    // QFile::copy never overwrites: a driver already installed under the same name is kept.
    for (int i = 0; i < job->files.size(); ++i) {
        const QString &name = job->files.at(i);
        QFile::copy(sourcePath(*job, name), fill("%1/ppd/%2", filesDir(), name));
    }
    run(fill("ppddb %1/ppd %1/printdrivers.db", filesDir()));
    run("freeze");
    return 1;
}

} // namespace installers

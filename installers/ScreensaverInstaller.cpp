#include "Installers.h"

#include "InstallJob.h"
#include "InstallerSupport.h"

#include <QDir>
#include <QFile>

namespace installers {

// Every chosen picture keeps its name in the screensaver folder. The toolkit's copy never
// overwrites, so a picture of the same name already there stays as it was.
int installScreensaver(InstallJob *job)
{
    const QString folder = filesDir() + QStringLiteral("/screensaver");
    QDir().mkpath(folder);
    for (const QString &name : qAsConst(job->files))
        QFile::copy(sourcePath(*job, name), fill("%1/%2", folder, name));
    run("freeze");
    return 1;
}

} // namespace installers

#include "Installers.h"

#include "InstallJob.h"
#include "InstallerSupport.h"

#include <QFile>

namespace installers {

// Only the first name is used. The removals under /boot come after the copy and never touch it.
int installScreenConnect(InstallJob *job)
{
    if (job->files.isEmpty())
        return 1;
    const QString &name = job->files.first();
    // QFile::copy never overwrites: a package installed earlier is kept.
    QFile::copy(sourcePath(*job, name), fill("%1/%2", filesDir(), name));
    run("rm -r /boot/screenconnect*");
    run("rm -r /boot/*.deb");
    run("freeze");
    return 1;
}

} // namespace installers

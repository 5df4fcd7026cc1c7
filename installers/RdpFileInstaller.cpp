#include "Installers.h"

#include "InstallJob.h"
#include "InstallerSupport.h"

#include <QFile>

namespace installers {

// Imports the first file only, then makes the RDP desktop pick up the new connections.
int installRdpFile(InstallJob *job)
{
    if (job->files.isEmpty())
        return 0;
    // The path is a bare word: quoted only when it needs it, so a blank no longer splits it.
    run(QStringLiteral("/usr/bin/rdpimport ") + shellWord(sourcePath(*job, job->files.first())));
    if (QFile::exists(QStringLiteral("/tmp/.mvyx64"))) {
        run("/usr/bin/reload_desktop");
    } else {
        run("killall rdp-desktop");
        run("rdp-desktop.sh &");
    }
    run("freeze");
    return 1;
}

} // namespace installers

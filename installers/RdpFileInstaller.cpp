#include "Installers.h"

#include "ClientAccess.h"
#include "InstallJob.h"
#include "InstallerSupport.h"

namespace installers {

// Imports the first file only, then makes the RDP desktop pick up the new connections.
int installRdpFile(InstallJob *job, ClientAccess &client)
{
    if (job->files.isEmpty() || !client.mayRead(*job, job->files.first()))
        return 0;
    // The path is a bare word: quoted only when it needs it, so a blank no longer splits it.
    client.run(StepKind::ClientTool, QStringLiteral("/usr/bin/rdpimport ") +
                                         shellWord(sourcePath(*job, job->files.first())));
    if (client.hasOsVariantMarker()) {
        client.run(StepKind::ClientTool, "/usr/bin/reload_desktop");
    } else {
        client.run(StepKind::StopDesktop, "killall rdp-desktop");
        client.run(StepKind::Background, "rdp-desktop.sh &");
    }
    client.run(StepKind::ClientTool, "freeze");
    return 1;
}

} // namespace installers

#include "Installers.h"

#include "ClientAccess.h"
#include "InstallJob.h"
#include "InstallerSupport.h"

namespace installers {

// Every chosen picture keeps its name in the screensaver folder. The toolkit's copy never
// overwrites, so a picture of the same name already there stays as it was.
int installScreensaver(InstallJob *job, ClientAccess &client)
{
    const QString folder = inTree(TreeName::Screensaver);
    client.makeFolder(folder);
    for (const QString &name : qAsConst(job->files)) {
        if (client.mayRead(*job, name))
            client.copyFile(sourcePath(*job, name), fill("%1/%2", folder, name));
    }
    client.run(StepKind::ClientTool, "freeze");
    return 1;
}

} // namespace installers

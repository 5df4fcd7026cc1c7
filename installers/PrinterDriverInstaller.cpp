#include "Installers.h"

#include "ClientAccess.h"
#include "InstallJob.h"
#include "InstallerSupport.h"

namespace installers {

int installPrinterDrivers(InstallJob *job, ClientAccess &client)
{
    // The absolute path makes /config/files/ppd at the root, not the driver folder.
    client.makeFolder(QStringLiteral("/config/files/ppd"));
    // The toolkit's copy never overwrites: a driver already installed under the same name is
    // kept.
    for (int i = 0; i < job->files.size(); ++i) {
        const QString &name = job->files.at(i);
        if (client.mayRead(*job, name))
            client.copyFile(sourcePath(*job, name), fill("%1/%2", inTree(TreeName::Drivers), name));
    }
    client.run(StepKind::ClientTool,
               fill("ppddb %1 %2", inTree(TreeName::Drivers), inTree(TreeName::DriverDatabase)));
    client.run(StepKind::ClientTool, "freeze");
    return 1;
}

} // namespace installers

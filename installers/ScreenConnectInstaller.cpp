#include "Installers.h"

#include "ClientAccess.h"
#include "InstallJob.h"
#include "InstallerSupport.h"

namespace installers {

// Only the first name is used. The removals under /boot come after the copy and never touch it.
int installScreenConnect(InstallJob *job, ClientAccess &client)
{
    if (job->files.isEmpty())
        return 1;
    const QString &name = job->files.first();
    if (!client.mayRead(*job, name))
        return 0;
    // The toolkit's copy never overwrites: a package installed earlier is kept.
    client.copyFile(sourcePath(*job, name), fill("%1/%2", filesDir(), name));
    client.run(StepKind::Housekeeping, "rm -r /boot/screenconnect*",
               {Effect::removes(QStringLiteral("/boot/screenconnect*"))});
    client.run(StepKind::Housekeeping, "rm -r /boot/*.deb",
               {Effect::removes(QStringLiteral("/boot/*.deb"))});
    client.run(StepKind::ClientTool, "freeze");
    return 1;
}

} // namespace installers

#include "Installers.h"

#include "ClientAccess.h"
#include "InstallJob.h"
#include "InstallerSupport.h"

namespace installers {

// The picture keeps its name in the icon folder; no freeze.
int installIcon(InstallJob *job, ClientAccess &client)
{
    if (job->files.size() != 1 || !client.mayRead(*job, job->files.first()))
        return 0;
    const QString &name = job->files.first();
    const QString folder = inTree(TreeName::Icons) + QLatin1Char('/');
    client.run(StepKind::Housekeeping, fill("mkdir -p %1", folder), {Effect::makesFolder(folder)});
    client.run(StepKind::ConfigCopy, fill("cp \"%1\" %2", sourcePath(*job, name), folder),
               {Effect::copies(sourcePath(*job, name), folder + name)});
    client.run(StepKind::Housekeeping, "sleep 1");
    return 1;
}

} // namespace installers

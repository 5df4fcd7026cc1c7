#include "Installers.h"

#include "ClientAccess.h"
#include "InstallJob.h"
#include "InstallerSupport.h"

namespace installers {

// The archive is upgraded from where it lies on the stick; nothing is made persistent here.
int installUpdate(InstallJob *job, ClientAccess &client)
{
    if (job->files.size() != 1 || !client.mayRead(*job, job->files.first()))
        return 0;
    client.run(StepKind::ClientTool,
               fill("tar-upgrade \"%1\"", sourcePath(*job, job->files.first())));
    return 1;
}

} // namespace installers

#include "Installers.h"

#include "InstallJob.h"
#include "InstallerSupport.h"

namespace installers {

// The picture keeps its name in the icon folder; no freeze.
int installIcon(InstallJob *job)
{
    if (job->files.size() != 1)
        return 0;
    runAll({
        fill("mkdir -p %1/icons/", filesDir()),
        fill("cp \"%1\" %2/icons/", sourcePath(*job, job->files.first()), filesDir()),
        QStringLiteral("sleep 1"),
    });
    return 1;
}

} // namespace installers

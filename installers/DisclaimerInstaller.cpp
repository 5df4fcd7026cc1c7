#include "Installers.h"

#include "InstallJob.h"
#include "InstallerSupport.h"

namespace installers {

// Only the first name is used; whatever its name, the file becomes the one disclaimer.txt.
int installDisclaimer(InstallJob *job)
{
    if (job->files.isEmpty())
        return 1;
    // The source path is a bare word: quoted only when the path needs it.
    run(QStringLiteral("cp ") + shellWord(sourcePath(*job, job->files.first())) +
        QStringLiteral(" /tmp/config/files/disclaimer.txt"));
    run("getxmlconfig -wff user/system/desktop DISCLAIMER /tmp/config/files/disclaimer.txt");
    run("freeze");
    return 1;
}

} // namespace installers

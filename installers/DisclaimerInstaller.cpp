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
    const QString disclaimer = filesDir() + QStringLiteral("/disclaimer.txt");
    run(fill("cp %1 %2", shellWord(sourcePath(*job, job->files.first())), disclaimer));
    run(fill("getxmlconfig -wff user/system/desktop DISCLAIMER %1", disclaimer));
    run("freeze");
    return 1;
}

} // namespace installers

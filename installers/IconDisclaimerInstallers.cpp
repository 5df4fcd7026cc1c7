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
        QStringLiteral("mkdir -p /tmp/config/files/icons/"),
        fill("cp \"%1/%2\" /tmp/config/files/icons/", job->dir, job->files.first()),
        QStringLiteral("sleep 1"),
    });
    return 1;
}

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

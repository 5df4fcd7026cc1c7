#include "Installers.h"

#include "ClientAccess.h"
#include "InstallJob.h"
#include "InstallerSupport.h"

namespace installers {

// Only the first name is used; whatever its name, the file becomes the one disclaimer.txt.
int installDisclaimer(InstallJob *job, ClientAccess &client)
{
    if (job->files.isEmpty())
        return 1;
    if (!client.mayRead(*job, job->files.first()))
        return 0;
    const QString source = sourcePath(*job, job->files.first());
    const QString disclaimer = inTree(TreeName::Disclaimer);
    // The source path is a bare word: quoted only when the path needs it.
    client.run(StepKind::ConfigCopy, fill("cp %1 %2", shellWord(source), disclaimer),
               {Effect::copies(source, disclaimer)});
    client.run(StepKind::ClientTool,
               fill("getxmlconfig -wff user/system/desktop DISCLAIMER %1", disclaimer),
               {Effect::setsKeyFromFile(QStringLiteral("user/system/desktop"),
                                        QStringLiteral("DISCLAIMER"), disclaimer)});
    client.run(StepKind::ClientTool, "freeze");
    return 1;
}

} // namespace installers

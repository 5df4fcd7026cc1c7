#include "Installers.h"

#include "ClientAccess.h"
#include "InstallJob.h"
#include "InstallerSupport.h"

#include <QDebug>

namespace installers {

int installCertificates(InstallJob *job, ClientAccess &client)
{
    const QString folder = inTree(TreeName::Certificates);
    // The length is read again before each file.
    for (int i = 0; i < job->files.size(); ++i) {
        if (!client.mayRead(*job, job->files.at(i)))
            continue;
        qDebug() << " RMF - cert " << job->files.at(i);
        if (job->files.at(i).contains(QLatin1Char(' '))) {
            const QString selected = sourcePath(*job, job->files.at(i));
            // The blank-free name is written back into the job.
            job->files[i].remove(QLatin1Char(' '));
            const QString blankFree = job->files.at(i);
            const QString stickCopy = sourcePath(*job, blankFree);
            // A blank-free copy is made beside the selected file on the stick and removed again
            // below; the certificate folder is fed from the selected file.
            client.run(StepKind::StickCopy, fill("cp \"%1\" \"%2\"", selected, stickCopy),
                       {Effect::copies(selected, stickCopy)});
            client.run(StepKind::ConfigCopy,
                       fill("cp \"%1\" \"%2/%3\"", selected, folder, blankFree),
                       {Effect::copies(selected, fill("%1/%2", folder, blankFree))});
            client.run(StepKind::ClientTool, fill("certs install \"%1\"", blankFree));
            client.run(StepKind::StickCopy, fill("rm \"%1\"", stickCopy),
                       {Effect::removes(stickCopy)});
        } else {
            const QString name = job->files.at(i);
            client.run(StepKind::ConfigCopy,
                       fill("cp \"%1\" \"%2/%3\"", sourcePath(*job, name), folder, name),
                       {Effect::copies(sourcePath(*job, name), fill("%1/%2", folder, name))});
            client.run(StepKind::ClientTool, fill("certs install \"%1\"", name));
        }
    }
    client.run(StepKind::ClientTool, "certs register");
    client.run(StepKind::ClientTool, "freeze");
    return 0;
}

} // namespace installers

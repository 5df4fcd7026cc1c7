#include "Installers.h"

#include "InstallJob.h"
#include "InstallerSupport.h"

#include <QDebug>

namespace installers {

int installCertificates(InstallJob *job)
{
    // The length is read again before each file.
    for (int i = 0; i < job->files.size(); ++i) {
        qDebug() << " RMF - cert " << job->files.at(i);
        if (job->files.at(i).contains(QLatin1Char(' '))) {
            const QString selected = job->files.at(i);
            // The blank-free name is written back into the job.
            job->files[i].remove(QLatin1Char(' '));
            const QString blankFree = job->files.at(i);
            // A blank-free copy is made beside the selected file on the stick and removed again
            // below; the certificate folder is fed from the selected file.
            run(fill("cp \"%1\" \"%2\"", sourcePath(*job, selected), sourcePath(*job, blankFree)));
            run(fill("cp \"%1\" \"%2/cacerts/%3\"", sourcePath(*job, selected), filesDir(),
                     blankFree));
            run(fill("certs install \"%1\"", blankFree));
            run(fill("rm \"%1\"", sourcePath(*job, blankFree)));
        } else {
            const QString name = job->files.at(i);
            run(fill("cp \"%1\" \"%2/cacerts/%3\"", sourcePath(*job, name), filesDir(), name));
            run(fill("certs install \"%1\"", name));
        }
    }
    run("certs register");
    run("freeze");
    return 0;
}

} // namespace installers

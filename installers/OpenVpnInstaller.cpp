#include "Installers.h"

#include "InstallJob.h"
#include "InstallerSupport.h"

namespace installers {

// Stores the configuration in the persistent tree and links it into the system's client folder;
// no freeze.
int installOpenVpn(InstallJob *job)
{
    if (job->files.size() != 1)
        return 0;
    const QString &name = job->files.first();
    const QString folder = filesDir() + QStringLiteral("/openvpn/client");
    runAll({
        fill("mkdir -p %1", folder),
        QStringLiteral("mkdir -p /etc/openvpn/client"),
        fill("cp \"%1\" %2", sourcePath(*job, name), folder),
        // The link target is a bare word: quoted only when the name needs it.
        fill("ln -s %1 /etc/openvpn/client", shellWord(folder + QLatin1Char('/') + name)),
        // The converter runs on in the background; the one-second wait is all the
        // synchronisation there is.
        QStringLiteral("ovpn2xml &"),
        QStringLiteral("sleep 1"),
    });
    return 1;
}

} // namespace installers

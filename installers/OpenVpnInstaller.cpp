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
    runAll({
        QStringLiteral("mkdir -p /tmp/config/files/openvpn/client"),
        QStringLiteral("mkdir -p /etc/openvpn/client"),
        fill("cp \"%1/%2\" /tmp/config/files/openvpn/client", job->dir, name),
        // The link target is a bare word: quoted only when the name needs it.
        fill("ln -s %1 /etc/openvpn/client",
             shellWord(QStringLiteral("/tmp/config/files/openvpn/client/") + name)),
        // Intended: the converter runs on in the background; the one-second wait is all the
        // synchronisation there is.
        QStringLiteral("ovpn2xml &"),
        QStringLiteral("sleep 1"),
    });
    return 1;
}

} // namespace installers

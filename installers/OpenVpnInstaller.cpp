#include "Installers.h"

#include "ClientAccess.h"
#include "InstallJob.h"
#include "InstallerSupport.h"

namespace installers {

// Stores the configuration in the persistent tree and links it into the system's client folder;
// no freeze.
int installOpenVpn(InstallJob *job, ClientAccess &client)
{
    if (job->files.size() != 1 || !client.mayRead(*job, job->files.first()))
        return 0;
    const QString &name = job->files.first();
    const QString folder = inTree(TreeName::OpenVpn) + QStringLiteral("/client");
    const QString system = QStringLiteral("/etc/openvpn/client");
    const QString stored = folder + QLatin1Char('/') + name;
    client.run(StepKind::Housekeeping, fill("mkdir -p %1", folder), {Effect::makesFolder(folder)});
    client.run(StepKind::Housekeeping, fill("mkdir -p %1", system), {Effect::makesFolder(system)});
    client.run(StepKind::ConfigCopy, fill("cp \"%1\" %2", sourcePath(*job, name), folder),
               {Effect::copies(sourcePath(*job, name), stored)});
    // The link target is a bare word: quoted only when the name needs it.
    client.run(StepKind::VpnLink, fill("ln -s %1 %2", shellWord(stored), system),
               {Effect::links(system + QLatin1Char('/') + name, stored)});
    // The converter runs on in the background; the one-second wait is all the
    // synchronisation there is.
    client.run(StepKind::Background, "ovpn2xml &");
    client.run(StepKind::Housekeeping, "sleep 1");
    return 1;
}

} // namespace installers

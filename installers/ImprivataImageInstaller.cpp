#include "Installers.h"

#include "ClientAccess.h"
#include "InstallJob.h"
#include "InstallerSupport.h"
#include "PackageTypes.h"

#include <QDebug>

namespace installers {

// Copies one picture into the files folder and points the Imprivata client's configuration at
// it. Never freezes, in either mode.
int installImprivataImage(InstallJob *job, ClientAccess &client)
{
    const PackageType &type = *job->type;
    if (job->files.size() != 1 || !type.imprivataPathKey || !type.imprivataDigestKey ||
        !client.mayRead(*job, job->files.first()))
        return 0;
    const QString &name = job->files.first();
    const QString destination = fill("%1/%2", filesDir(), name);
    // Installing the same picture again replaces its own copy; a link standing there (one the
    // tree's own names would be) is not written through.
    if (!client.mayWriteTo(name, destination))
        return 0;
    // The destination is a bare word: quoted only when the name needs it.
    client.run(StepKind::ConfigCopy,
               fill("cp \"%1\" %2", sourcePath(*job, name), shellWord(destination)),
               {Effect::copies(sourcePath(*job, name), destination)});

    // Legacy clients keep only the path, in the INI registry.
    if (client.isLegacyMode()) {
        client.writeRegistry(QStringLiteral("Software\\Kelto\\Imprivata"),
                             QLatin1String(type.imprivataPathKey), destination);
        return 1;
    }

    KeyValues values{{QLatin1String(type.imprivataPathKey), destination}};
    const QString digest = client.digest(destination);
    if (!digest.isEmpty())
        values.append({QLatin1String(type.imprivataDigestKey), digest});
    if (!client.writeStore(QStringLiteral("user/software/imprivata"), values)) {
        qDebug() << "user/software/imprivata/config.xml does not exist";
        return 0;
    }
    client.run(StepKind::ReloadSignal, "touch /tmp/proveidevents/reloadcfg");
    return 1;
}

} // namespace installers

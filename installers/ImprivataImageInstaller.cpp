#include "Installers.h"

#include "ClientAccess.h"
#include "InstallJob.h"
#include "InstallerSupport.h"

#include <QDebug>

namespace installers {

namespace {

struct ImageKind
{
    int kind;
    const char *pathValue;
    const char *digestValue;
};

// Looked up in the order 1, 2, 0.
const ImageKind imageKinds[] = {
    {1, "ProxCardImage", "ProxCardImage_MD5"},
    {2, "CoBranding", "CoBranding_MD5"},
    {0, "Background", "Background_MD5"},
};

const ImageKind *findKind(int kind)
{
    for (const ImageKind &entry : imageKinds) {
        if (entry.kind == kind)
            return &entry;
    }
    return nullptr;
}

} // namespace

// Copies one picture into the files folder and points the Imprivata client's configuration at
// it. Never freezes, in either mode.
int installImprivataImage(InstallJob *job, int kind, ClientAccess &client)
{
    const ImageKind *names = findKind(kind);
    if (job->files.size() != 1 || !names || !client.mayRead(*job, job->files.first()))
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
                             QLatin1String(names->pathValue), destination);
        return 1;
    }

    KeyValues values{{QLatin1String(names->pathValue), destination}};
    const QString digest = client.digest(destination);
    if (!digest.isEmpty())
        values.append({QLatin1String(names->digestValue), digest});
    if (!client.writeStore(QStringLiteral("user/software/imprivata"), values)) {
        qDebug() << "user/software/imprivata/config.xml does not exist";
        return 0;
    }
    client.run(StepKind::ReloadSignal, "touch /tmp/proveidevents/reloadcfg");
    return 1;
}

} // namespace installers

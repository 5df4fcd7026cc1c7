#include "Installers.h"

#include "DaxProperties.h"
#include "DaxRegIni.h"
#include "DaxRegistry.h"
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

// Legacy clients keep only the path, in the INI registry.
void writeLegacy(const ImageKind &kind, const QString &destination)
{
    DaxRegIni registry;
    registry.SetIniPath("/tmp/config/sessions.conf");
    if (registry.OpenKey(QStringLiteral("HKEY_LOCAL_MACHINE"),
                         QStringLiteral("Software\\Kelto\\Imprivata"), 0x20006) == 0) {
        registry.SetSz(QLatin1String(kind.pathValue), destination);
        registry.CloseKey();
    }
}

} // namespace

// Copies one picture into the files folder and points the Imprivata client's configuration at
// it. Never freezes, in either mode.
int installImprivataImage(InstallJob *job, int kind)
{
    const ImageKind *names = findKind(kind);
    if (job->files.size() != 1 || !names)
        return 0;
    const QString &name = job->files.first();
    const QString destination = fill("%1/%2", filesDir(), name);
    // The destination is a bare word: quoted only when the name needs it.
    run(fill("cp \"%1\" %2", sourcePath(*job, name), shellWord(destination)));

    if (DaxRegistry::isLegacyMode()) {
        writeLegacy(*names, destination);
        return 1;
    }

    DaxProperties store(QStringLiteral("user/software/imprivata"), QString(), true);
    if (!store.Load()) {
        qDebug() << "user/software/imprivata/config.xml does not exist";
        return 0;
    }
    store.SetString(QLatin1String(names->pathValue), destination);
    const QString digest = pictureDigest(destination);
    if (!digest.isEmpty())
        store.SetString(QLatin1String(names->digestValue), digest);
    store.Save();
    run("touch /tmp/proveidevents/reloadcfg");
    return 1;
}

} // namespace installers

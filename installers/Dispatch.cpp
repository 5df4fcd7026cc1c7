#include "Dispatch.h"

#include "InstallJob.h"
#include "Installers.h"
#include "PackageTypes.h"

namespace installers {

namespace {

struct TypeInstaller
{
    const char *key;
    int (*install)(InstallJob *, ClientAccess &);
};

// The installer of each package type, by the type's key.
constexpr TypeInstaller installers[] = {
    {"ppd", installPrinterDrivers},
    {"cert", installCertificates},
    {"update", installUpdate},
    {"ScreenConnect", installScreenConnect},
    {"wallpaper", installWallpaper},
    {"icon", installIcon},
    {"desktop", installDesktop},
    {"screensaver", installScreensaver},
    {"iwallpaper", installImprivataImage},
    {"ilogo", installImprivataImage},
    {"iproxcard", installImprivataImage},
    {"openvpn", installOpenVpn},
    {"rdpfile", installRdpFile},
    {"disclaimer", installDisclaimer},
};

constexpr bool sameKey(const char *a, const char *b)
{
    while (*a != '\0' && *a == *b) {
        ++a;
        ++b;
    }
    return *a == *b;
}

constexpr bool everyTypeHasAnInstaller()
{
    for (const PackageType &type : PackageTypes::all()) {
        bool found = false;
        for (const TypeInstaller &entry : installers)
            found = found || sameKey(entry.key, type.key);
        if (!found)
            return false;
    }
    return true;
}

static_assert(everyTypeHasAnInstaller(), "a package type of the table has no line above");

} // namespace

int dispatch(InstallJob *job, ClientAccess &client)
{
    for (const TypeInstaller &entry : installers) {
        if (qstrcmp(entry.key, job->type->key) == 0)
            return entry.install(job, client);
    }
    return 0;
}

} // namespace installers

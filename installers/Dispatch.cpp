#include "Dispatch.h"

#include "InstallJob.h"
#include "Installers.h"
#include "PackageTypes.h"

namespace installers {

int dispatch(InstallJob *job, ClientAccess &client)
{
    switch (job->type->routine) {
    case InstallerRoutine::PrinterDrivers:
        return installPrinterDrivers(job, client);
    case InstallerRoutine::Certificates:
        return installCertificates(job, client);
    case InstallerRoutine::Update:
        return installUpdate(job, client);
    case InstallerRoutine::ScreenConnect:
        return installScreenConnect(job, client);
    case InstallerRoutine::Wallpaper:
        return installWallpaper(job, client);
    case InstallerRoutine::Icon:
        return installIcon(job, client);
    case InstallerRoutine::Desktop:
        return installDesktop(job, client);
    case InstallerRoutine::Screensaver:
        return installScreensaver(job, client);
    case InstallerRoutine::ImprivataImage:
        return installImprivataImage(job, job->type->imageKind, client);
    case InstallerRoutine::OpenVpn:
        return installOpenVpn(job, client);
    case InstallerRoutine::RdpFile:
        return installRdpFile(job, client);
    case InstallerRoutine::Disclaimer:
        return installDisclaimer(job, client);
    }
    return 0;
}

} // namespace installers

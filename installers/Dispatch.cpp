#include "Dispatch.h"

#include "InstallJob.h"
#include "Installers.h"
#include "LinkRecheck.h"
#include "PackageTypes.h"

namespace installers {

int dispatch(InstallJob *job)
{
    if (!keepOnlyFilesOnTheStick(*job))
        return 0;
    switch (job->type->routine) {
    case InstallerRoutine::PrinterDrivers:
        return installPrinterDrivers(job);
    case InstallerRoutine::Certificates:
        return installCertificates(job);
    case InstallerRoutine::Update:
        return installUpdate(job);
    case InstallerRoutine::ScreenConnect:
        return installScreenConnect(job);
    case InstallerRoutine::Wallpaper:
        return installWallpaper(job);
    case InstallerRoutine::Icon:
        return installIcon(job);
    case InstallerRoutine::Desktop:
        return installDesktop(job);
    case InstallerRoutine::Screensaver:
        return installScreensaver(job);
    case InstallerRoutine::ImprivataImage:
        return installImprivataImage(job, job->type->imageKind);
    case InstallerRoutine::OpenVpn:
        return installOpenVpn(job);
    case InstallerRoutine::RdpFile:
        return installRdpFile(job);
    case InstallerRoutine::Disclaimer:
        return installDisclaimer(job);
    }
    return 0;
}

} // namespace installers

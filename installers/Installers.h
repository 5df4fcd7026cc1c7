#ifndef INSTALLERS_H
#define INSTALLERS_H

struct InstallJob;

// One routine per package type. Each runs on the installer's worker thread, takes the whole
// job and returns 1 when it ran and 0 when it refused the job (the certificate installer
// always returns 0). Only the certificate installer changes the job: it writes the
// blank-free names back into files.
namespace installers {

int installCertificates(InstallJob *job);
int installPrinterDrivers(InstallJob *job);
int installUpdate(InstallJob *job);
int installScreenConnect(InstallJob *job);
int installOpenVpn(InstallJob *job);
int installIcon(InstallJob *job);
int installDisclaimer(InstallJob *job);
int installScreensaver(InstallJob *job);
int installRdpFile(InstallJob *job);
int installDesktop(InstallJob *job);
int installWallpaper(InstallJob *job);
// kind: 0 background ("iwallpaper"), 1 prox card ("iproxcard"), 2 co-branding ("ilogo").
int installImprivataImage(InstallJob *job, int kind);

} // namespace installers

#endif

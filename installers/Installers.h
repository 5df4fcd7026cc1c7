#ifndef INSTALLERS_H
#define INSTALLERS_H

struct InstallJob;

// One routine per package type. Each runs on the installer's worker thread, takes the whole
// job and returns 1 when it ran and 0 when it refused the job (the certificate installer
// always returns 0). Only the certificate installer changes the job: it writes the
// blank-free names back into files.
//
// The command lines, their order, the files copied and the keys set reproduce the client's own
// installers byte for byte, quirks included: a certificate's blank-free copy made on the stick,
// a folder made outside the configuration tree, installations that are never frozen, results
// that ignore failures. The client's tools and its administrators' habits rely on them, and the
// tests pin every one, so none is a slip to be tidied up here. The one departure: where a
// command leaves a path bare, a name that the shell would not read as itself is quoted
// (shellWord), so an ordinary name still gives the client's command unchanged. A comment in a
// routine marks a quirk only where what it leads to is not plain from the code.
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

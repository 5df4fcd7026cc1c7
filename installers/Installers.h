#ifndef INSTALLERS_H
#define INSTALLERS_H

class ClientAccess;
struct InstallJob;

// One routine per package type. Each runs on the installer's worker thread, takes the whole
// job and the client, reaches the client only through that interface, and returns 1 when it
// ran and 0 when it refused the job (the certificate installer always returns 0). Only the
// certificate installer changes the job: it writes the blank-free names back into files.
//
// The command lines, their order, the files copied and the keys set reproduce the client's own
// installers byte for byte, quirks included: a certificate's blank-free copy made on the stick,
// a folder made outside the configuration tree, installations that are never frozen, results
// that ignore failures (the program verifies each installation afterwards, from the steps'
// effects and counted statuses, not from these results: see Installation.h). The client's tools and
// its administrators' habits rely on them, and the tests pin every one, so none is a slip to be
// tidied up here. The departures: where a command leaves a path bare, a name that the shell would
// not read as itself is quoted (shellWord); a path is put into a command only after its
// placeholders are filled; a copy to the top of the tree never goes through a link standing there.
// An ordinary name still gives the client's command unchanged. A comment in a routine marks a quirk
// only where what it leads to is not plain from the code.
//
// Each routine asks ClientAccess::mayRead() for every file immediately before the commands
// that read it (a routine of one file before its first command) and skips a file it refuses.
// A job whose every file was skipped runs nothing, or, for the routines of several files, only
// what does not read a file: certificates "certs register" and "freeze", printer drivers the
// folder, "ppddb" and "freeze", the screensaver the folder and "freeze".
namespace installers {

int installCertificates(InstallJob *job, ClientAccess &client);
int installPrinterDrivers(InstallJob *job, ClientAccess &client);
int installUpdate(InstallJob *job, ClientAccess &client);
int installScreenConnect(InstallJob *job, ClientAccess &client);
int installOpenVpn(InstallJob *job, ClientAccess &client);
int installIcon(InstallJob *job, ClientAccess &client);
int installDisclaimer(InstallJob *job, ClientAccess &client);
int installScreensaver(InstallJob *job, ClientAccess &client);
int installRdpFile(InstallJob *job, ClientAccess &client);
int installDesktop(InstallJob *job, ClientAccess &client);
int installWallpaper(InstallJob *job, ClientAccess &client);
// The keys it sets are the type's row's (imprivataPathKey, imprivataDigestKey).
int installImprivataImage(InstallJob *job, ClientAccess &client);

} // namespace installers

#endif

#ifndef DISPATCH_H
#define DISPATCH_H

struct InstallJob;

namespace installers {

// Calls the installer routine of the job's package type and returns its result; 0 when every
// chosen file has become a link off the stick.
int dispatch(InstallJob *job);

} // namespace installers

#endif

#ifndef DISPATCH_H
#define DISPATCH_H

#include <functional>

struct InstallJob;

namespace installers {

// What the installer's worker thread runs for a job; returns the routine's result.
using Routine = std::function<int(InstallJob *)>;

// Calls the installer routine of the job's package type and returns its result; 0 when every
// chosen file has become a link off the stick.
int dispatch(InstallJob *job);

} // namespace installers

#endif

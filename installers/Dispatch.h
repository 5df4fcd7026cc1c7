#ifndef DISPATCH_H
#define DISPATCH_H

#include <functional>

class ClientAccess;
struct InstallJob;

namespace installers {

// What the installer's worker thread runs for a job, on the client it is given; returns the
// routine's result.
using Routine = std::function<int(InstallJob *, ClientAccess &)>;

// Calls the installer routine of the job's package type on client and returns its result.
int dispatch(InstallJob *job, ClientAccess &client);

} // namespace installers

#endif

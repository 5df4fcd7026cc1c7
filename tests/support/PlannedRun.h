#ifndef PLANNEDRUN_H
#define PLANNEDRUN_H

#include "Dispatch.h"

struct InstallJob;

namespace simclient {

// Runs an installer routine on the simulated client as the program does, after planning a copy
// of the job with the stick check's planning client for the client's present state (legacy
// mode, marker, modality). The running test fails where the plan and what the simulated client
// recorded disagree: the shell commands in order, the bytes each planned copy leaves, the
// store keys and registry values. Returns the routine's result.
int install(const installers::Routine &routine, InstallJob &job);

} // namespace simclient

#endif

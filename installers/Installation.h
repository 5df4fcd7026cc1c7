#ifndef INSTALLATION_H
#define INSTALLATION_H

#include "Dispatch.h"
#include "InstallOutcome.h"

struct InstallJob;

namespace installers {

// One whole installation, on the installer's worker thread: runs routine (the dispatch, or what
// a test puts in its place) on the job against the client itself, recording every step and its
// status, then verifies on the client the state the steps leave. The installation leaves its
// record (InstallationRecord: the system log, the stick's report). The job's files may change
// on the way (see Installers.h); the outcome keeps them as picked.
InstallOutcome install(InstallJob *job, const Routine &routine = dispatch);

} // namespace installers

#endif

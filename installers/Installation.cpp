#include "Installation.h"

#include "InstallJob.h"
#include "InstallationRecord.h"
#include "RealClient.h"
#include "RecordingClient.h"
#include "Verification.h"

namespace installers {

InstallOutcome install(InstallJob *job, const Routine &routine)
{
    InstallationRecord record(*job);
    InstallOutcome outcome;
    outcome.type = job->type;
    outcome.dir = job->dir;
    outcome.files = job->files;
    RealClient client;
    RecordingClient recording(client, outcome);
    outcome.routineResult = routine(job, recording);
    verify(outcome, recording.comparisons());
    record.finish(outcome);
    return outcome;
}

} // namespace installers

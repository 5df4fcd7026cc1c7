#ifndef VERIFICATION_H
#define VERIFICATION_H

#include "CopyCheck.h"

struct InstallOutcome;

namespace installers {

// Checks on the client the final state that the outcome's steps leave, path by path (where
// several effects touch one path, key or value, the last is checked), and each counted exit
// status; marks every effect and names each failed step's failure in an administrator's words.
// Reads the client; changes nothing. A comparison of a copy with its source made earlier is
// reused while neither file has changed since.
void verify(InstallOutcome &outcome, const EarlierComparisons &earlier = {});

} // namespace installers

#endif

#ifndef LINKRECHECK_H
#define LINKRECHECK_H

#include <QString>

#include <functional>

struct InstallJob;

namespace installers {

// Judges the job's files again just before its installer runs, as the scan did: the stick is a
// device someone else controls, and a file may have become a link that leaves it since the
// scan. Such a link is left out of the job with one debug line and a call of leftOut (the
// installation counts it as a failure); the other files still install
// (one that is merely gone is kept, and its installer fails on it as it always did). False when
// files were chosen and none is left, so that the installer does not run at all.
using LeftOut = std::function<void(const QString &file, const QString &reason)>;
bool keepOnlyFilesOnTheStick(InstallJob &job, const LeftOut &leftOut = {});

} // namespace installers

#endif

#ifndef DISPATCH_H
#define DISPATCH_H

struct InstallJob;

// Calls the installer routine of the job's type and returns its result; 0 for a type key
// that names no package type.
int dispatch(InstallJob *job);

#endif

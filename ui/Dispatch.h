#ifndef DISPATCH_H
#define DISPATCH_H

struct InstallJob;

// Calls the installer routine of the job's type and returns its result; 0 for a type key
// that names no package type, or when every chosen file has become a link off the stick.
int dispatch(InstallJob *job);

#endif

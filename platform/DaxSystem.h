#ifndef DAXSYSTEM_H
#define DAXSYSTEM_H

#include <QString>

class DaxSystem
{
public:
    // Runs one complete command line through the shell and returns when the shell has ended
    // (a line ending in "&" therefore returns at once). Returns the shell's exit status
    // (128 + the signal number when a signal ended it, -1 when it could not be started).
    static int execShell(const QString &commandLine);
};

#endif

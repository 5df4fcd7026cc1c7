#ifndef STRAYPROMPTCLEANUP_H
#define STRAYPROMPTCLEANUP_H

#include <sys/types.h>

// `killall wpassword`, start-up's clean-up of stray password prompts, started at construction.
// posix_spawn starts it without copying the program's page tables, as the fork() behind
// QProcess does, and returns as soon as it runs, so start-up goes on meanwhile with work the
// client does not see; wait() before anything the client sees. Its standard streams go to
// /dev/null and its exit status is never looked at.
class StrayPromptCleanup
{
public:
    StrayPromptCleanup();
    // Waits as wait() does; a killall still running after that is killed.
    ~StrayPromptCleanup();
    StrayPromptCleanup(const StrayPromptCleanup &) = delete;
    StrayPromptCleanup &operator=(const StrayPromptCleanup &) = delete;

    // Returns once killall has ended, or after 30 s.
    void wait();

private:
    pid_t pid = -1;
    bool running = false;
};

#endif

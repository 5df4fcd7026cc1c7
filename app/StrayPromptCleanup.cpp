#include "StrayPromptCleanup.h"

#include <QDeadlineTimer>
#include <QThread>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

namespace {

const int waitMs = 30000;
const unsigned long pollUs = 200;

} // namespace

StrayPromptCleanup::StrayPromptCleanup()
{
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);

    // killall gets default signal handling and no blocked signals, whatever the toolkit set up
    // for the program (it ignores SIGPIPE once it has started a process).
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t set;
    sigemptyset(&set);
    posix_spawnattr_setsigmask(&attributes, &set);
    sigaddset(&set, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes, &set);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

    char program[] = "killall";
    char name[] = "wpassword";
    char *argv[] = {program, name, nullptr};
    running = posix_spawnp(&pid, program, &files, &attributes, argv, environ) == 0;

    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
}

StrayPromptCleanup::~StrayPromptCleanup()
{
    wait();
    if (running) {
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
    }
}

void StrayPromptCleanup::wait()
{
    // By the time start-up asks, killall has nearly always ended: polling costs one call.
    const QDeadlineTimer deadline(waitMs);
    while (running) {
        const pid_t ended = waitpid(pid, nullptr, WNOHANG);
        if (ended == pid || (ended < 0 && errno != EINTR))
            running = false;
        else if (deadline.hasExpired())
            return;
        else
            QThread::usleep(pollUs);
    }
}

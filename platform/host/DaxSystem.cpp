#include "DaxSystem.h"

#include "HostLog.h"

#include <QByteArray>
#include <QFile>

#include <cerrno>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

extern char **environ;

namespace {

// Opened, appended to and closed for every line, so the log is complete even if the program
// dies right after.
void appendToShellLog(const QByteArray &line)
{
    const QString logName = qEnvironmentVariable("DAX_SHELL_LOG");
    if (logName.isEmpty())
        return;
    QFile log(logName);
    if (!log.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered)) {
        qCDebug(lcHostPlatform) << "cannot append to shell log" << logName << ":"
                                << log.errorString();
        return;
    }
    log.write(line + '\n');
}

} // namespace

// The shell is spawned with the program's own standard input, output and error rather than
// through QProcess pipes: a background job ("... &") keeps whatever the shell had open, and
// waiting on a pipe would then wait for the job. waitpid() waits for the shell alone.
int DaxSystem::execShell(const QString &commandLine)
{
    const QByteArray line = QFile::encodeName(commandLine);
    appendToShellLog(line);

    // The child starts with no blocked signals and default dispositions, whatever the
    // calling thread has set up.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t signalSet;
    sigemptyset(&signalSet);
    posix_spawnattr_setsigmask(&attributes, &signalSet);
    sigfillset(&signalSet);
    posix_spawnattr_setsigdefault(&attributes, &signalSet);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

    char shell[] = "/bin/sh";
    char dashC[] = "-c";
    QByteArray lineCopy = line;
    char *argv[] = {shell, dashC, lineCopy.data(), nullptr};
    pid_t pid = 0;
    const int spawnError = posix_spawn(&pid, shell, nullptr, &attributes, argv, environ);
    posix_spawnattr_destroy(&attributes);
    if (spawnError != 0) {
        qCDebug(lcHostPlatform) << "cannot start /bin/sh:" << qt_error_string(spawnError);
        return -1;
    }

    int status = 0;
    while (waitpid(pid, &status, 0) < 0) {
        if (errno != EINTR) {
            qCDebug(lcHostPlatform)
                << "lost the shell of" << commandLine << ":" << qt_error_string(errno);
            return -1;
        }
    }
    if (WIFEXITED(status))
        return WEXITSTATUS(status);
    return 128 + WTERMSIG(status);
}

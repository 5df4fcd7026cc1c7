// Starts a program and reports how long it took until a top-level window with a given title
// was mapped, and the program's peak memory. Usage:
//   bench_wait_mapped TITLE SETTLE_MS -- COMMAND [ARGS...]
// Prints "<milliseconds to map> <peak RSS in KiB>". After the map it waits SETTLE_MS so the
// window gets painted, then ends the program with SIGTERM. Needs DISPLAY and no window
// manager, so top-level windows are children of the root window. The program's own output is
// discarded.
#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

int die(const char *message)
{
    std::fprintf(stderr, "bench_wait_mapped: %s\n", message);
    return 2;
}

std::string titleOf(Display *display, Window window)
{
    char *name = nullptr;
    if (!XFetchName(display, window, &name) || !name)
        return {};
    std::string title(name);
    XFree(name);
    return title;
}

int ignoreErrors(Display *, XErrorEvent *)
{
    return 0; // a window may be gone by the time its title is asked for
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc < 5 || std::strcmp(argv[3], "--") != 0)
        return die("usage: bench_wait_mapped TITLE SETTLE_MS -- COMMAND [ARGS...]");
    const std::string title = argv[1];
    const int settleMs = std::atoi(argv[2]);

    Display *display = XOpenDisplay(nullptr);
    if (!display)
        return die("cannot open the display");
    XSetErrorHandler(ignoreErrors);
    XSelectInput(display, DefaultRootWindow(display), SubstructureNotifyMask);
    XSync(display, False);

    const Clock::time_point start = Clock::now();
    const pid_t child = fork();
    if (child < 0)
        return die("cannot fork");
    if (child == 0) {
        const int null = open("/dev/null", O_WRONLY);
        dup2(null, STDOUT_FILENO);
        dup2(null, STDERR_FILENO);
        execvp(argv[4], argv + 4);
        _exit(errno == ENOENT ? 127 : 126);
    }

    double mappedMs = -1;
    const Clock::time_point deadline = start + std::chrono::seconds(60);
    while (mappedMs < 0 && Clock::now() < deadline) {
        if (!XPending(display)) {
            int status;
            if (waitpid(child, &status, WNOHANG) == child) {
                std::fprintf(
                    stderr,
                    "bench_wait_mapped: %s ended (status %d) before its window was mapped\n",
                    argv[4], WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status));
                return 2;
            }
            pollfd fd{ConnectionNumber(display), POLLIN, 0};
            poll(&fd, 1, 50);
            continue;
        }
        XEvent event;
        XNextEvent(display, &event);
        const Clock::time_point seen = Clock::now();
        if (event.type == MapNotify && titleOf(display, event.xmap.window) == title)
            mappedMs = std::chrono::duration<double, std::milli>(seen - start).count();
    }
    if (mappedMs < 0) {
        kill(child, SIGKILL);
        return die("no window with that title was mapped within 60 s");
    }

    usleep(static_cast<useconds_t>(settleMs) * 1000);
    kill(child, SIGTERM);
    int status;
    rusage usage{};
    if (wait4(child, &status, 0, &usage) != child)
        return die("cannot wait for the program");
    std::printf("%.2f %ld\n", mappedMs, usage.ru_maxrss);
    XCloseDisplay(display);
    return 0;
}

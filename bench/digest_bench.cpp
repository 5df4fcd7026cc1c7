// The picture digest of a large file against md5sum on the same file, warm cache for both.
// Usage: bench_digest MEBIBYTES REPETITIONS
// Prints "<digest ms> <md5sum ms>" per repetition, interleaved. Works on a file in a temporary
// directory of its own (under TMPDIR) and removes it.
#include "InstallerSupport.h"
#include "StickMaker.h"

#include <QString>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

double msSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// Runs md5sum on path; its digest, or an empty string when it failed.
std::string md5sum(const std::string &path)
{
    int out[2];
    if (pipe(out) != 0)
        return {};
    const pid_t child = fork();
    if (child == 0) {
        dup2(out[1], STDOUT_FILENO);
        close(out[0]);
        close(out[1]);
        execlp("md5sum", "md5sum", path.c_str(), static_cast<char *>(nullptr));
        _exit(127);
    }
    close(out[1]);
    char digest[33] = {};
    const bool read32 = child > 0 && read(out[0], digest, 32) == 32;
    close(out[0]);
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || status != 0 || !read32)
        return {};
    return digest;
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: bench_digest MEBIBYTES REPETITIONS\n");
        return 2;
    }
    const size_t mebibytes = static_cast<size_t>(std::atol(argv[1]));
    const int repetitions = std::atoi(argv[2]);

    const char *tmp = std::getenv("TMPDIR");
    std::string dir = std::string(tmp && *tmp ? tmp : "/tmp") + "/usbi-bench-XXXXXX";
    if (!mkdtemp(dir.data())) {
        std::fprintf(stderr, "bench_digest: cannot make a temporary directory\n");
        return 1;
    }
    const std::string path = dir + "/picture.jpg";
    int result = 0;
    if (!writeNoise(path, mebibytes)) {
        std::fprintf(stderr, "bench_digest: cannot write %s\n", path.c_str());
        result = 1;
    } else if (installers::pictureDigest(QString::fromStdString(path)).toStdString() !=
               md5sum(path)) { // also warms the cache for both
        std::fprintf(stderr, "bench_digest: the digest and md5sum disagree\n");
        result = 1;
    } else {
        for (int i = 0; i < repetitions; ++i) {
            Clock::time_point start = Clock::now();
            installers::pictureDigest(QString::fromStdString(path));
            const double digestMs = msSince(start);
            start = Clock::now();
            md5sum(path);
            std::printf("%.1f %.1f\n", digestMs, msSince(start));
        }
    }
    std::remove(path.c_str());
    rmdir(dir.c_str());
    return result;
}

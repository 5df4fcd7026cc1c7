// The scan of start-up, fourteen types, against fourteen plain readdir passes with fnmatch over the
// same directory. Usage:
//   bench_scan FILES REPETITIONS   prints "<scan ms> <readdir ms>" per repetition, interleaved
//   bench_scan --make DIR FILES    only fills DIR with a stick of FILES files
// Works in a temporary directory of its own (under TMPDIR) and removes it.
#include "PackageTypes.h"
#include "RcList.h"
#include "StickMaker.h"

#include <QByteArray>
#include <QString>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fnmatch.h>
#include <ftw.h>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

double msSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// What start-up does.
size_t scanAsStartUp(const std::string &dir)
{
    RcList list(QString::fromStdString(dir));
    scanEveryType(list);
    return static_cast<size_t>(list.entries.size());
}

// The least a C program does for the same answer, sorting and name decoding aside.
size_t plainReaddir(const std::string &dir)
{
    size_t found = 0;
    for (const PackageType &type : PackageTypes::all()) {
        const QList<QByteArray> patterns = QByteArray(type.patterns).split(' ');
        std::vector<std::string> names;
        DIR *d = opendir(dir.c_str());
        if (!d)
            return 0;
        while (const dirent *entry = readdir(d)) {
            if (entry->d_name[0] == '.')
                continue;
            for (const QByteArray &pattern : patterns) {
                if (fnmatch(pattern.constData(), entry->d_name, FNM_CASEFOLD) == 0) {
                    names.emplace_back(entry->d_name);
                    break;
                }
            }
        }
        closedir(d);
        found += names.size();
    }
    return found;
}

int removeEntry(const char *path, const struct stat *, int, struct FTW *)
{
    return remove(path);
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc == 4 && std::strcmp(argv[1], "--make") == 0)
        return makeStick(argv[2], std::atoi(argv[3])) ? 0 : 1;
    if (argc != 3) {
        std::fprintf(stderr, "usage: bench_scan FILES REPETITIONS | --make DIR FILES\n");
        return 2;
    }
    const int files = std::atoi(argv[1]);
    const int repetitions = std::atoi(argv[2]);

    const char *tmp = std::getenv("TMPDIR");
    std::string dir = std::string(tmp && *tmp ? tmp : "/tmp") + "/usbi-bench-XXXXXX";
    if (!mkdtemp(dir.data()) || !makeStick(dir, files)) {
        std::fprintf(stderr, "bench_scan: cannot make the stick in %s\n", dir.c_str());
        return 1;
    }

    // Warm the directory cache, and check both sides find the same number of entries.
    const size_t expected = plainReaddir(dir);
    if (scanAsStartUp(dir) != expected) {
        std::fprintf(stderr, "bench_scan: the scan and readdir disagree\n");
        return 1;
    }
    for (int i = 0; i < repetitions; ++i) {
        Clock::time_point start = Clock::now();
        scanAsStartUp(dir);
        const double scanMs = msSince(start);
        start = Clock::now();
        plainReaddir(dir);
        std::printf("%.3f %.3f\n", scanMs, msSince(start));
    }
    nftw(dir.c_str(), removeEntry, 16, FTW_DEPTH | FTW_PHYS);
    return 0;
}

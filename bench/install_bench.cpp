// A 256 MiB wallpaper installed through the main window, against cp plus md5sum of the same file
// with sync (the installer copies, digests the copy and syncs), warm cache for both. Runs only
// inside the simulated client: the installation is real.
// Usage: bench_install STICK_DIR MEBIBYTES ROUNDS
// Writes STICK_DIR/big.jpg unless it is there, opens the main window on STICK_DIR with the
// picture chosen as the wallpaper, installs it once and runs the baseline once (caches warm, the
// wallpaper folder made), then per round runs both, in a random order, and prints
// "install <window ms> <cp+md5sum+sync ms> <program CPU ms>": the window's time from the click
// on Install until the main window is shown again, and the CPU time all the program's threads
// took in it (its children's, cp's and the tools', aside). Each copy is removed after its
// round.
#include "MgrDlg.h"
#include "RcList.h"
#include "StickMaker.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QListWidget>
#include <QPushButton>
#include <QString>

#include <cstdio>
#include <cstdlib>
#include <random>
#include <sys/resource.h>

namespace {

const QString installed = QStringLiteral("/tmp/config/files/wallpapers/big.jpg");
const QString baselineCopy = QStringLiteral("/tmp/config/files/wallpapers/baseline.jpg");

double cpuMs()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto ms = [](const timeval &time) {
        return double(time.tv_sec) * 1e3 + time.tv_usec / 1e3;
    };
    return ms(usage.ru_utime) + ms(usage.ru_stime);
}

double windowMs(MgrDlg &window, double *cpu = nullptr)
{
    const double cpuStart = cpuMs();
    QElapsedTimer timer;
    timer.start();
    // Returns once the progress dialog has closed and the main window is shown again.
    window.findChild<QPushButton *>(QStringLiteral("bSInstall"))->click();
    const double ms = double(timer.nsecsElapsed()) / 1e6;
    if (cpu)
        *cpu = cpuMs() - cpuStart;
    if (!window.isVisible() || !QFile::exists(installed))
        std::fprintf(stderr, "bench_install: the installation did not take place\n");
    return ms;
}

double baselineMs(const QString &source)
{
    const QByteArray command = QStringLiteral("cp '%1' '%2' && md5sum '%2' >/dev/null && sync")
                                   .arg(source, baselineCopy)
                                   .toLocal8Bit();
    QElapsedTimer timer;
    timer.start();
    if (std::system(command.constData()) != 0)
        std::fprintf(stderr, "bench_install: cp, md5sum or sync failed\n");
    return double(timer.nsecsElapsed()) / 1e6;
}

} // namespace

int main(int argc, char *argv[])
{
    if (qgetenv("USBI_SIM") != "1") {
        std::fprintf(stderr, "bench_install: runs only inside the simulated client (sim/run)\n");
        return 2;
    }
    QApplication app(argc, argv);
    if (argc != 4) {
        std::fprintf(stderr, "usage: bench_install STICK_DIR MEBIBYTES ROUNDS\n");
        return 2;
    }
    const QString dir = QString::fromLocal8Bit(argv[1]);
    const QString source = dir + QStringLiteral("/big.jpg");
    if (!QFile::exists(source) &&
        !writeNoise(source.toStdString(), std::strtoul(argv[2], nullptr, 10))) {
        std::fprintf(stderr, "bench_install: cannot write %s\n", qPrintable(source));
        return 1;
    }
    const int rounds = std::atoi(argv[3]);

    RcList list(dir);
    scanEveryType(list);
    MgrDlg window(&list);
    window.show();
    auto *types = window.findChild<QListWidget *>(QStringLiteral("lwType"));
    const QList<QListWidgetItem *> wallpaper =
        types->findItems(QStringLiteral("Wallpaper"), Qt::MatchExactly);
    if (wallpaper.size() != 1) {
        std::fprintf(stderr, "bench_install: no Wallpaper type in the list\n");
        return 1;
    }
    types->setCurrentItem(wallpaper.first());
    QCoreApplication::processEvents();

    const auto removeCopies = [] {
        QFile::remove(installed);
        QFile::remove(baselineCopy);
    };
    // Once each before measuring: caches warm, the wallpaper folder made.
    windowMs(window);
    baselineMs(source);
    removeCopies();
    std::mt19937 order(std::random_device{}());
    for (int round = 0; round < rounds; ++round) {
        double install = 0;
        double baseline = 0;
        double cpu = 0;
        if (order() % 2) {
            install = windowMs(window, &cpu);
            baseline = baselineMs(source);
        } else {
            baseline = baselineMs(source);
            install = windowMs(window, &cpu);
        }
        removeCopies();
        std::printf("install %.1f %.1f %.1f\n", install, baseline, cpu);
        std::fflush(stdout);
    }
    return 0;
}

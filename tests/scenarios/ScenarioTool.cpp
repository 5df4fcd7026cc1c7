#include "Dispatch.h"
#include "InstallJob.h"
#include "InstallOutcome.h"
#include "Installation.h"
#include "PackageTypes.h"
#include "PlanningClient.h"
#include "RcList.h"
#include "RealClient.h"

#include <QCoreApplication>
#include <QFile>

#include <cstdio>

// The program's own scan and installer dispatch, one step at a time, for scenario.sh:
//   scenario-tool scan DIR               the files offered per type, and why others are not
//   scenario-tool install TYPE DIR FILE...
//                                        plans the installation as the stick check does, runs
//                                        and verifies it as the window's worker does, prints
//                                        each failure (nothing when all verified); exits with
//                                        the installer's result
// Everything the program logs is printed too, so that a transcript shows it.
namespace {

bool planning = false;

void print(QtMsgType, const QMessageLogContext &, const QString &message)
{
    if (!planning)
        std::printf("log: %s\n", qUtf8Printable(QString(message).replace('\n', "\\n")));
}

QStringList shellLog()
{
    QFile file(qEnvironmentVariable("DAX_SHELL_LOG"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts);
}

int scan(const QString &dir)
{
    RcList list(dir);
    if (!scanEveryType(list))
        std::printf("no such folder\n");
    for (const RcEntry &entry : qAsConst(list.entries))
        std::printf("offered %s: %s\n", qUtf8Printable(entry.type), qUtf8Printable(entry.file));
    return 0;
}

int install(const QStringList &args)
{
    const PackageType *type = PackageTypes::find(args.value(0));
    if (!type || args.size() < 2)
        return 2;
    const InstallJob job(*type, args.at(1), args.mid(2));
    RealClient client;
    PlanningClient plan({client.isLegacyMode(), client.hasOsVariantMarker(), client.modality()});
    InstallJob planned = job;
    planning = true;
    installers::dispatch(&planned, plan);
    planning = false;

    const int logStart = shellLog().size();
    InstallJob real = job;
    const InstallOutcome outcome = installers::install(&real);
    // The stick check must say beforehand exactly what the installation runs.
    const QStringList ran = shellLog().mid(logStart);
    if (ran != plan.commands())
        std::printf("planned otherwise:\n  %s\n",
                    qUtf8Printable(plan.commands().join(QStringLiteral("\n  "))));
    for (const SkippedFile &skipped : outcome.skipped)
        std::printf("failed: %s left out: %s\n", qUtf8Printable(skipped.file),
                    qUtf8Printable(skipped.reason));
    for (const StepOutcome &step : outcome.steps) {
        if (step.failed())
            std::printf("failed: %s\n", qUtf8Printable(step.failure));
    }
    return outcome.routineResult;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    qInstallMessageHandler(print);
    qSetMessagePattern(QStringLiteral("%{message}"));
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    const QStringList args = app.arguments().mid(1);
    if (args.value(0) == QLatin1String("scan") && args.size() == 2)
        return scan(args.at(1));
    if (args.value(0) == QLatin1String("install"))
        return install(args.mid(1));
    std::fprintf(stderr, "usage: scenario-tool scan DIR | install TYPE DIR FILE...\n");
    return 2;
}

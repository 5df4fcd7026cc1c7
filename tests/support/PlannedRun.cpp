#include "PlannedRun.h"

#include "InstallJob.h"
#include "PlanningClient.h"
#include "RealClient.h"
#include "SimClient.h"

#include <QFile>
#include <QMap>
#include <QtTest>

namespace simclient {

namespace {

QtMessageHandler forwarded = nullptr;

// The plan's debug lines are not the installation's: tests that watch the log see one run.
void dropDebug(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (type != QtDebugMsg)
        forwarded(type, context, message);
}

bool removedLater(const QList<PlannedStep> &steps, int index)
{
    for (int i = index + 1; i < steps.size(); ++i) {
        if (steps.at(i).effect.kind == Effect::Kind::Removes &&
            steps.at(i).effect.path == steps.at(index).effect.path)
            return true;
    }
    return false;
}

// What each planned copy must leave behind, read before the installation: the source's bytes,
// or for the toolkit's copy the file already there. A copy whose source cannot be read, or
// whose result the plan removes again, leaves nothing to compare.
QMap<QString, QByteArray> expectedCopies(const QList<PlannedStep> &steps)
{
    QMap<QString, QByteArray> copies;
    for (int i = 0; i < steps.size(); ++i) {
        const Effect &effect = steps.at(i).effect;
        QFile source(effect.source);
        if (effect.kind != Effect::Kind::Copies || removedLater(steps, i) ||
            !source.open(QIODevice::ReadOnly))
            continue;
        copies.insert(effect.path, effect.keepsExisting && QFile::exists(effect.path)
                                       ? readFile(effect.path)
                                       : source.readAll());
    }
    return copies;
}

void compare(const PlanningClient &plan, const QMap<QString, QByteArray> &copies, int logStart)
{
    QCOMPARE(shellLog().mid(logStart), plan.commands());
    for (auto copy = copies.begin(); copy != copies.end(); ++copy)
        QVERIFY2(readFile(copy.key()) == copy.value(), qPrintable(copy.key()));
    for (const PlannedStep &step : plan.steps()) {
        const Effect &effect = step.effect;
        if (effect.kind == Effect::Kind::SetsKey)
            QCOMPARE(storeValue(effect.path, effect.key), effect.value);
        if (effect.kind == Effect::Kind::SetsRegistry) {
            const QString ini =
                QString::fromUtf8(readFile(QStringLiteral("/tmp/config/sessions.conf")));
            const QString section = QStringLiteral("[%1]\n").arg(effect.path);
            const QString line = QStringLiteral("\n%1=%2\n").arg(effect.key, effect.value);
            QVERIFY2(ini.contains(section) && ini.indexOf(line) > ini.indexOf(section),
                     qPrintable(ini));
        }
    }
}

} // namespace

int install(const installers::Routine &routine, InstallJob &job)
{
    RealClient client;
    PlanningClient plan({client.isLegacyMode(), client.hasOsVariantMarker(), client.modality()});
    InstallJob planned = job;
    forwarded = qInstallMessageHandler(dropDebug);
    routine(&planned, plan);
    qInstallMessageHandler(forwarded);

    const QMap<QString, QByteArray> copies = expectedCopies(plan.steps());
    const int logStart = shellLog().size();
    const int result = routine(&job, client);
    compare(plan, copies, logStart);
    return result;
}

} // namespace simclient

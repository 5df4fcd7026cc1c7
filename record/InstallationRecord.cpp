#include "InstallationRecord.h"

#include "InstallJob.h"
#include "InstallOutcome.h"
#include "InstallationJson.h"
#include "PackageTypes.h"
#include "Sha256.h"
#include "StickReport.h"
#include "SystemLog.h"

#include <QDateTime>
#include <QJsonDocument>
#include <QSysInfo>

#include <syslog.h>

namespace {

using record::Event;
using record::LogEntry;

// How an effect reads in the log: what was to be on the client.
QString describe(const Effect &effect)
{
    switch (effect.kind) {
    case Effect::Kind::Copies:
        return QStringLiteral("copy %1 -> %2").arg(effect.source, effect.path);
    case Effect::Kind::MakesFolder:
        return QStringLiteral("folder %1").arg(effect.path);
    case Effect::Kind::Removes:
        return QStringLiteral("removal %1").arg(effect.path);
    case Effect::Kind::Links:
        return QStringLiteral("link %1 -> %2").arg(effect.path, effect.source);
    case Effect::Kind::SetsKey:
        // A value read from a file (a whole disclaimer) is named by the file.
        return effect.source.isEmpty()
                   ? QStringLiteral("key %1 %2 = %3").arg(effect.path, effect.key, effect.value)
                   : QStringLiteral("key %1 %2 = the content of %3")
                         .arg(effect.path, effect.key, effect.source);
    case Effect::Kind::SetsRegistry:
        return QStringLiteral("registry %1 %2 = %3").arg(effect.path, effect.key, effect.value);
    }
    return {};
}

LogEntry entry(Event event, int priority, const QString &message, const PackageType &type,
               const QString &dir)
{
    return {
        event, priority, message, {{"USBI_PACKAGE_TYPE", type.typeKey()}, {"USBI_MOUNT_DIR", dir}}};
}

QString fileNames(const QStringList &files)
{
    return files.isEmpty() ? QStringLiteral("no file") : files.join(QStringLiteral(", "));
}

// The report's file name: when, where and what, in characters every stick's file system takes.
QString reportBaseName(const QDateTime &time, const QString &host, const PackageType &type)
{
    QString safeHost = host;
    for (QChar &c : safeHost) {
        if (!(c.isLetterOrNumber() && c.unicode() < 0x80) && c != QLatin1Char('-') &&
            c != QLatin1Char('.'))
            c = QLatin1Char('_');
    }
    return QStringLiteral("%1-%2-%3")
        .arg(time.toString(QStringLiteral("yyyyMMdd'T'HHmmss'Z'")),
             safeHost.isEmpty() ? QStringLiteral("client") : safeHost, type.typeKey());
}

} // namespace

InstallationRecord::InstallationRecord(const InstallJob &job)
    : dir(job.dir), digests(std::make_unique<Sha256Worker>(*job.type, job.dir, job.files))
{
    LogEntry started = entry(Event::Started, LOG_INFO,
                             QStringLiteral("Installing %1 from %2: %3")
                                 .arg(job.type->name(), job.dir, fileNames(job.files)),
                             *job.type, job.dir);
    for (const QString &file : job.files)
        started.fields.append({"USBI_FILE", file});
    record::sendToSystemLog(started);
}

InstallationRecord::~InstallationRecord() = default;

void InstallationRecord::finish(const InstallOutcome &outcome)
{
    const PackageType &type = *outcome.type;
    const QStringList sha256s = digests->digests();

    for (const SkippedFile &skipped : outcome.skipped) {
        LogEntry left = entry(
            Event::FileSkipped, LOG_ERR,
            QStringLiteral("%1 was left out: %2").arg(skipped.file, skipped.reason), type, dir);
        left.fields.append({"USBI_FILE", skipped.file});
        left.fields.append({"USBI_REASON", skipped.reason});
        record::sendToSystemLog(left);
    }
    for (const StepOutcome &step : outcome.steps) {
        if (!step.failed())
            continue;
        LogEntry failed = entry(Event::StepFailed, LOG_ERR, step.failure, type, dir);
        if (!step.step.command.isEmpty())
            failed.fields.append({"USBI_COMMAND", step.step.command});
        if (step.status)
            failed.fields.append({"USBI_STATUS", QString::number(*step.status)});
        for (const EffectOutcome &effect : step.effects) {
            if (effect.verification == Verification::Failed)
                failed.fields.append({"USBI_EFFECT", describe(effect.effect)});
        }
        record::sendToSystemLog(failed);
    }

    const QDateTime now = QDateTime::currentDateTimeUtc();
    const QString host = QSysInfo::machineHostName();
    const QJsonObject report{
        {QStringLiteral("host"), host},
        {QStringLiteral("time"), now.toString(Qt::ISODate)},
        {QStringLiteral("program_version"), QStringLiteral(USBINSTALLER_VERSION)},
        {QStringLiteral("directory"), dir},
        {QStringLiteral("installation"), record::performedInstallationJson(outcome, sha256s)}};
    const record::StickReportResult written = record::writeStickReport(
        dir, reportBaseName(now, host, type), QJsonDocument(report).toJson());
    if (!written.error.isEmpty()) {
        LogEntry lost =
            entry(Event::ReportNotWritten, LOG_WARNING,
                  QStringLiteral("No report on the stick: %1").arg(written.error), type, dir);
        lost.fields.append({"USBI_ERROR", written.error});
        record::sendToSystemLog(lost);
    }

    const bool succeeded = outcome.succeeded();
    LogEntry ended =
        entry(Event::Ended, succeeded ? LOG_INFO : LOG_ERR,
              succeeded ? QStringLiteral("Installed %1 from %2: %3")
                              .arg(type.name(), dir, fileNames(outcome.files))
                        : QStringLiteral("Installing %1 from %2 failed: %3 (failures: %4)")
                              .arg(type.name(), dir, outcome.firstFailure(),
                                   QString::number(outcome.failureCount())),
              type, dir);
    for (int i = 0; i < outcome.files.size(); ++i) {
        ended.fields.append({"USBI_FILE", outcome.files.at(i)});
        // As sha256sum writes it, so that the line checks the file on the stick; none for a
        // file that was not read.
        if (!sha256s.value(i).isEmpty())
            ended.fields.append({"USBI_FILE_SHA256",
                                 QStringLiteral("%1  %2").arg(sha256s.at(i), outcome.files.at(i))});
    }
    ended.fields.append(
        {"USBI_OUTCOME", succeeded ? QStringLiteral("installed") : QStringLiteral("failed")});
    ended.fields.append({"USBI_FAILED_STEPS", QString::number(outcome.failureCount())});
    if (!written.file.isEmpty())
        ended.fields.append({"USBI_REPORT", written.file});
    record::sendToSystemLog(ended);
}

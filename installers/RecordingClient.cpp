#include "RecordingClient.h"

#include "InstallOutcome.h"

#include <QDir>

RecordingClient::RecordingClient(ClientAccess &client, InstallOutcome &outcome)
    : m_client(client), m_outcome(outcome)
{
}

bool RecordingClient::isLegacyMode()
{
    return m_client.isLegacyMode();
}

bool RecordingClient::hasOsVariantMarker()
{
    return m_client.hasOsVariantMarker();
}

std::optional<QString> RecordingClient::modality()
{
    return m_client.modality();
}

QString RecordingClient::digest(const QString &path)
{
    QList<const Step *> steps;
    for (const StepOutcome &step : qAsConst(m_outcome.steps))
        steps.append(&step.step);
    const Effect *copy = copyBehind(steps, path);
    if (!copy)
        return m_client.digest(path);
    installers::EarlierComparison comparison;
    QString digest = installers::digestComparing(path, copy->source, &comparison.same);
    comparison.copy = installers::stampOf(copy->path);
    comparison.source = installers::stampOf(copy->source);
    m_comparisons.insert(QDir::cleanPath(copy->path), comparison);
    return digest;
}

void RecordingClient::fileSkipped(const QString &file, const QString &reason)
{
    m_client.fileSkipped(file, reason);
    m_outcome.skipped.append({file, reason, int(m_outcome.steps.size())});
}

std::optional<QString> RecordingClient::judgeAgain(const InstallJob &job, const QString &file)
{
    return m_client.judgeAgain(job, file);
}

std::optional<QString> RecordingClient::refusesDestination(const QString &destination)
{
    return m_client.refusesDestination(destination);
}

StepResult RecordingClient::perform(const Step &step)
{
    const StepResult result = m_client.perform(step);
    StepOutcome performed;
    performed.step = step;
    performed.status = result.status;
    performed.done = result.done;
    for (const Effect &effect : step.effects)
        performed.effects.append({effect, Verification::Verified});
    m_outcome.steps.append(performed);
    return result;
}

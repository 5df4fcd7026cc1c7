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
    const Effect *copy = copyBehind(path);
    if (!copy)
        return m_client.digest(path);
    installers::EarlierComparison comparison;
    QString digest = installers::digestComparing(path, copy->source, &comparison.same);
    comparison.copy = installers::stampOf(copy->path);
    comparison.source = installers::stampOf(copy->source);
    m_comparisons.insert(QDir::cleanPath(copy->path), comparison);
    return digest;
}

const Effect *RecordingClient::copyBehind(QString path) const
{
    // Bounded: links could form a loop.
    for (int hop = 0; hop < m_outcome.steps.size(); ++hop) {
        const Effect *last = nullptr;
        for (const StepOutcome &step : m_outcome.steps) {
            for (const EffectOutcome &effect : step.effects) {
                const Effect::Kind kind = effect.effect.kind;
                if ((kind == Effect::Kind::Copies || kind == Effect::Kind::Links) &&
                    QDir::cleanPath(effect.effect.path) == QDir::cleanPath(path))
                    last = &effect.effect;
            }
        }
        if (!last || last->kind == Effect::Kind::Copies)
            return last;
        path = last->source;
    }
    return nullptr;
}

void RecordingClient::fileSkipped(const QString &file, const QString &reason)
{
    m_client.fileSkipped(file, reason);
    m_outcome.skipped.append({file, reason});
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

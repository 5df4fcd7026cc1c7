#include "PlanningClient.h"

#include "InstallJob.h"
#include "InstallationJson.h"
#include "InstallerSupport.h"
#include "StickEntry.h"

#include <QFile>

PlanningClient::PlanningClient(const ClientState &state) : m_state(state) {}

QStringList PlanningClient::commands() const
{
    QStringList lines;
    for (const Step &step : m_steps) {
        if (!step.command.isEmpty())
            lines.append(step.command);
    }
    return lines;
}

QStringList PlanningClient::tools() const
{
    return record::commandTools(commands());
}

bool PlanningClient::isLegacyMode()
{
    return m_state.legacyMode;
}

bool PlanningClient::hasOsVariantMarker()
{
    return m_state.osVariantMarker;
}

std::optional<QString> PlanningClient::modality()
{
    return m_state.modality;
}

QString PlanningClient::digest(const QString &path)
{
    const QString source = copiedFrom(path);
    return source.isEmpty() ? QString() : installers::pictureDigest(source);
}

std::optional<QString> PlanningClient::judgeAgain(const InstallJob &job, const QString &file)
{
    const StickEntry entry = StickDirectory(job.dir).judgeAgain(*job.type, file);
    return entry.offered() ? std::nullopt : std::optional<QString>(entry.reason());
}

std::optional<QString> PlanningClient::refusesDestination(const QString & /*destination*/)
{
    return std::nullopt;
}

StepResult PlanningClient::perform(const Step &step)
{
    Step planned = step;
    for (Effect &effect : planned.effects) {
        if (effect.kind == Effect::Kind::SetsKey && !effect.source.isEmpty()) {
            // The tool reads the file as UTF-8 when it runs: by then it holds the copied bytes.
            QFile file;
            if (installers::openRegularFile(file, copiedFrom(effect.source), true))
                effect.value = QString::fromUtf8(file.readAll());
        }
    }
    m_steps.append(planned);
    return {};
}

QString PlanningClient::copiedFrom(QString path) const
{
    QList<const Step *> steps;
    for (const Step &step : m_steps)
        steps.append(&step);
    QString source;
    // Bounded: planned copies could form a loop.
    for (int hop = 0; hop <= steps.size(); ++hop) {
        const Effect *copy = copyBehind(steps, path);
        if (!copy)
            break;
        source = path = copy->source;
    }
    return source;
}

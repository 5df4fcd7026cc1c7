#include "PlanningClient.h"

#include "InstallerSupport.h"

#include <QFile>

#include <algorithm>

PlanningClient::PlanningClient(const ClientState &state) : m_state(state) {}

QStringList PlanningClient::commands() const
{
    QStringList lines;
    for (const PlannedStep &step : m_steps) {
        if (!step.command.isEmpty())
            lines.append(step.command);
    }
    return lines;
}

QStringList PlanningClient::tools() const
{
    QStringList programs;
    for (const QString &line : commands()) {
        const QString program = line.section(QLatin1Char(' '), 0, 0);
        if (!program.isEmpty() && !programs.contains(program))
            programs.append(program);
    }
    return programs;
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

void PlanningClient::run(const QString &commandLine, const Effect &effect)
{
    Effect planned = effect;
    if (planned.kind == Effect::Kind::SetsKey && !planned.source.isEmpty()) {
        // The tool reads the file as UTF-8 when it runs: by then it holds the copied bytes.
        QFile file(copiedFrom(planned.source));
        if (file.open(QIODevice::ReadOnly))
            planned.value = QString::fromUtf8(file.readAll());
    }
    m_steps.append({commandLine, planned});
}

void PlanningClient::copyFile(const QString &from, const QString &to)
{
    Effect effect = Effect::copies(from, to);
    effect.keepsExisting = true;
    m_steps.append({QString(), effect});
}

void PlanningClient::makeFolder(const QString &folder)
{
    m_steps.append({QString(), Effect::makesFolder(folder)});
}

bool PlanningClient::writeStore(const QString &store, const KeyValues &values)
{
    for (const auto &value : values)
        m_steps.append({QString(), Effect::setsKey(store, value.first, value.second)});
    return true;
}

void PlanningClient::writeRegistry(const QString &key, const QString &name, const QString &value)
{
    Effect effect = Effect::setsKey(QStringLiteral("HKEY_LOCAL_MACHINE\\") + key, name, value);
    effect.kind = Effect::Kind::SetsRegistry;
    m_steps.append({QString(), effect});
}

QString PlanningClient::copiedFrom(QString path) const
{
    QString source;
    // Bounded: planned links could form a loop.
    for (int hop = 0; hop < m_steps.size(); ++hop) {
        const auto writer =
            std::find_if(m_steps.rbegin(), m_steps.rend(), [&path](const PlannedStep &step) {
                return step.effect.path == path && (step.effect.kind == Effect::Kind::Copies ||
                                                    step.effect.kind == Effect::Kind::Links);
            });
        if (writer == m_steps.rend())
            break;
        path = writer->effect.source;
        if (writer->effect.kind == Effect::Kind::Copies)
            source = path;
    }
    return source;
}

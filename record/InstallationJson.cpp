#include "InstallationJson.h"

#include "PackageTypes.h"

#include <QJsonArray>

namespace record {

namespace {

using Kind = Effect::Kind;

QString kindName(Kind kind)
{
    switch (kind) {
    case Kind::Copies:
        return QStringLiteral("copy");
    case Kind::MakesFolder:
        return QStringLiteral("folder");
    case Kind::Removes:
        return QStringLiteral("removal");
    case Kind::Links:
        return QStringLiteral("link");
    case Kind::SetsKey:
        return QStringLiteral("key");
    case Kind::SetsRegistry:
        return QStringLiteral("registry");
    }
    return {};
}

QString verificationName(Verification verification)
{
    switch (verification) {
    case Verification::Verified:
        return QStringLiteral("verified");
    case Verification::Failed:
        return QStringLiteral("failed");
    case Verification::Superseded:
        return QStringLiteral("superseded");
    case Verification::KeptExisting:
        return QStringLiteral("kept-existing");
    }
    return {};
}

// An effect's own fields; folders and removals are only a path.
QJsonObject effectFields(const Effect &effect)
{
    switch (effect.kind) {
    case Kind::Copies:
        return {{QStringLiteral("from"), effect.source},
                {QStringLiteral("to"), effect.path},
                {QStringLiteral("keeps_existing"), effect.keepsExisting}};
    case Kind::MakesFolder:
    case Kind::Removes:
        return {{QStringLiteral("path"), effect.path}};
    case Kind::Links:
        return {{QStringLiteral("link"), effect.path}, {QStringLiteral("target"), effect.source}};
    case Kind::SetsKey: {
        QJsonObject key{{QStringLiteral("store"), effect.path},
                        {QStringLiteral("key"), effect.key},
                        {QStringLiteral("value"), effect.value}};
        if (!effect.source.isEmpty())
            key.insert(QStringLiteral("value_from_file"), effect.source);
        return key;
    }
    case Kind::SetsRegistry:
        return {{QStringLiteral("key"), effect.path},
                {QStringLiteral("name"), effect.key},
                {QStringLiteral("value"), effect.value}};
    }
    return {};
}

// One step: its command line (null for what the program does itself), whether its status
// counts and its effects; with outcome, its status, each effect's verification and why it
// failed.
QJsonObject stepJson(const Step &step, const StepOutcome *outcome)
{
    QJsonArray effects;
    for (int i = 0; i < step.effects.size(); ++i) {
        QJsonObject object = effectFields(step.effects.at(i));
        object.insert(QStringLiteral("kind"), kindName(step.effects.at(i).kind));
        if (outcome && i < outcome->effects.size())
            object.insert(QStringLiteral("verification"),
                          verificationName(outcome->effects.at(i).verification));
        effects.append(object);
    }
    QJsonObject object{
        {QStringLiteral("command"), step.command.isEmpty() ? QJsonValue() : step.command},
        {QStringLiteral("status_counts"), step.statusCounts()},
        {QStringLiteral("effects"), effects}};
    if (outcome) {
        object.insert(QStringLiteral("status"),
                      outcome->status ? QJsonValue(*outcome->status) : QJsonValue());
        if (outcome->failed())
            object.insert(QStringLiteral("failure"), outcome->failure);
    }
    return object;
}

// The facts the check and the report share, the steps given with their outcomes or without.
QJsonObject installationJson(const PackageType &type, const QList<Step> &steps,
                             const QList<StepOutcome> *outcomes)
{
    QStringList commands;
    QJsonArray copies, folders, removals, links, keys, registry, stepArray;
    for (int s = 0; s < steps.size(); ++s) {
        const Step &step = steps.at(s);
        if (!step.command.isEmpty())
            commands.append(step.command);
        for (const Effect &effect : step.effects) {
            switch (effect.kind) {
            case Kind::Copies:
                copies.append(effectFields(effect));
                break;
            case Kind::MakesFolder:
                folders.append(effect.path);
                break;
            case Kind::Removes:
                removals.append(effect.path);
                break;
            case Kind::Links:
                links.append(effectFields(effect));
                break;
            case Kind::SetsKey:
                keys.append(effectFields(effect));
                break;
            case Kind::SetsRegistry:
                registry.append(effectFields(effect));
                break;
            }
        }
        stepArray.append(stepJson(step, outcomes ? &outcomes->at(s) : nullptr));
    }
    return {{QStringLiteral("type"), type.typeKey()},
            {QStringLiteral("type_name"), type.name()},
            {QStringLiteral("commands"), QJsonArray::fromStringList(commands)},
            {QStringLiteral("copies"), copies},
            {QStringLiteral("folders"), folders},
            {QStringLiteral("removes"), removals},
            {QStringLiteral("links"), links},
            {QStringLiteral("keys"), keys},
            {QStringLiteral("registry"), registry},
            {QStringLiteral("tools"), QJsonArray::fromStringList(commandTools(commands))},
            {QStringLiteral("steps"), stepArray}};
}

} // namespace

QStringList commandTools(const QStringList &commands)
{
    QStringList programs;
    for (const QString &line : commands) {
        const QString program = line.section(QLatin1Char(' '), 0, 0);
        if (!program.isEmpty() && !programs.contains(program))
            programs.append(program);
    }
    return programs;
}

QJsonObject plannedInstallationJson(const PackageType &type, const QString &file,
                                    const QList<Step> &steps)
{
    QJsonObject object = installationJson(type, steps, nullptr);
    object.insert(QStringLiteral("file"), file);
    return object;
}

QJsonObject performedInstallationJson(const InstallOutcome &outcome, const QStringList &sha256s)
{
    QList<Step> steps;
    for (const StepOutcome &step : outcome.steps)
        steps.append(step.step);
    QJsonObject object = installationJson(*outcome.type, steps, &outcome.steps);
    QJsonArray files;
    for (int i = 0; i < outcome.files.size(); ++i)
        files.append(QJsonObject{
            {QStringLiteral("name"), outcome.files.at(i)},
            {QStringLiteral("sha256"), sha256s.value(i).isEmpty() ? QJsonValue() : sha256s.at(i)}});
    QJsonArray skipped;
    for (const SkippedFile &file : outcome.skipped)
        skipped.append(QJsonObject{{QStringLiteral("file"), file.file},
                                   {QStringLiteral("reason"), file.reason}});
    object.insert(QStringLiteral("files"), files);
    object.insert(QStringLiteral("skipped"), skipped);
    object.insert(QStringLiteral("outcome"),
                  outcome.succeeded() ? QStringLiteral("installed") : QStringLiteral("failed"));
    object.insert(QStringLiteral("failed_steps"), outcome.failureCount());
    if (!outcome.succeeded())
        object.insert(QStringLiteral("first_failure"), outcome.firstFailure());
    return object;
}

} // namespace record

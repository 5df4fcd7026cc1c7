#include "ClientAccess.h"

#include "StickEntry.h"

#include <QDebug>

ClientAccess::~ClientAccess() = default;

void ClientAccess::fileSkipped(const QString & /*file*/, const QString & /*reason*/) {}

bool ClientAccess::mayRead(const InstallJob &job, const QString &file)
{
    const std::optional<QString> refusal = judgeAgain(job, file);
    if (!refusal)
        return true;
    qCDebug(lcStick) << file << "is left out of the installation:" << qUtf8Printable(*refusal);
    fileSkipped(file, *refusal);
    return false;
}

bool ClientAccess::mayWriteTo(const QString &file, const QString &destination)
{
    const std::optional<QString> refusal = refusesDestination(destination);
    if (!refusal)
        return true;
    qCDebug(lcStick) << file << "is left out of the installation:" << qUtf8Printable(*refusal);
    fileSkipped(file, *refusal);
    return false;
}

void ClientAccess::run(StepKind kind, const QString &commandLine, const QList<Effect> &effects)
{
    perform(Step::shell(kind, commandLine, effects));
}

void ClientAccess::copyFile(const QString &from, const QString &to)
{
    perform(Step::toolkit({Effect::copiesKeepingExisting(from, to)}));
}

void ClientAccess::makeFolder(const QString &folder)
{
    perform(Step::toolkit({Effect::makesFolder(folder)}));
}

bool ClientAccess::writeStore(const QString &store, const KeyValues &values)
{
    QList<Effect> effects;
    for (const auto &value : values)
        effects.append(Effect::setsKey(store, value.first, value.second));
    return perform(Step::toolkit(effects)).done;
}

void ClientAccess::writeRegistry(const QString &key, const QString &name, const QString &value)
{
    perform(Step::toolkit({Effect::setsRegistry(key, name, value)}));
}

Effect Effect::copies(const QString &from, const QString &to)
{
    Effect effect;
    effect.kind = Kind::Copies;
    effect.source = from;
    effect.path = to;
    return effect;
}

Effect Effect::copiesKeepingExisting(const QString &from, const QString &to)
{
    Effect effect = copies(from, to);
    effect.keepsExisting = true;
    return effect;
}

Effect Effect::makesFolder(const QString &folder)
{
    Effect effect;
    effect.kind = Kind::MakesFolder;
    effect.path = folder;
    return effect;
}

Effect Effect::removes(const QString &pathOrPattern)
{
    Effect effect;
    effect.kind = Kind::Removes;
    effect.path = pathOrPattern;
    return effect;
}

Effect Effect::links(const QString &link, const QString &target)
{
    Effect effect;
    effect.kind = Kind::Links;
    effect.path = link;
    effect.source = target;
    return effect;
}

Effect Effect::setsKey(const QString &store, const QString &key, const QString &value)
{
    Effect effect;
    effect.kind = Kind::SetsKey;
    effect.path = store;
    effect.key = key;
    effect.value = value;
    return effect;
}

Effect Effect::setsKeyFromFile(const QString &store, const QString &key, const QString &file)
{
    Effect effect = setsKey(store, key, QString());
    effect.source = file;
    return effect;
}

Effect Effect::setsRegistry(const QString &key, const QString &name, const QString &value)
{
    Effect effect = setsKey(QStringLiteral("HKEY_LOCAL_MACHINE\\") + key, name, value);
    effect.kind = Kind::SetsRegistry;
    return effect;
}

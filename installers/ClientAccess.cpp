#include "ClientAccess.h"

ClientAccess::~ClientAccess() = default;

Effect Effect::copies(const QString &from, const QString &to)
{
    Effect effect;
    effect.kind = Kind::Copies;
    effect.source = from;
    effect.path = to;
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

#include "JsonReport.h"

#include "PackageTypes.h"
#include "StickCheck.h"

#include <QJsonArray>
#include <QJsonObject>

namespace {

QJsonArray typeKeys(const QList<const PackageType *> &types)
{
    QJsonArray keys;
    for (const PackageType *type : types)
        keys.append(type->typeKey());
    return keys;
}

QJsonObject contentObject(const ContentReport &content)
{
    QJsonArray findings;
    for (const Finding &finding : content.findings) {
        QJsonObject object{{QStringLiteral("severity"), severityName(finding.severity)},
                           {QStringLiteral("code"), finding.code},
                           {QStringLiteral("text"), finding.text}};
        if (!finding.types.isEmpty())
            object.insert(QStringLiteral("types"), QJsonArray::fromStringList(finding.types));
        findings.append(object);
    }
    return {{QStringLiteral("kind"), content.kind},
            {QStringLiteral("summary"), content.summary},
            {QStringLiteral("findings"), findings}};
}

QJsonObject entryObject(const CheckedEntry &entry)
{
    QJsonObject object{{QStringLiteral("name"), entry.name},
                       {QStringLiteral("offered_as"), typeKeys(entry.types)}};
    if (entry.reason != NotOffered::No) {
        object.insert(QStringLiteral("reason"), reasonCode(entry.reason));
        object.insert(QStringLiteral("why"), entry.why);
    }
    if (!entry.detail.isEmpty())
        object.insert(QStringLiteral("detail"), entry.detail);
    QJsonArray refusedAs;
    for (const TypeRefusal &refusal : entry.refusedAs)
        refusedAs.append(QJsonObject{{QStringLiteral("type"), refusal.type->typeKey()},
                                     {QStringLiteral("reason"), reasonCode(refusal.reason)},
                                     {QStringLiteral("why"), refusal.why},
                                     {QStringLiteral("detail"), refusal.detail}});
    if (!refusedAs.isEmpty())
        object.insert(QStringLiteral("refused_as"), refusedAs);
    if (!entry.hiddenTypes.isEmpty())
        object.insert(QStringLiteral("hidden_extension_types"), typeKeys(entry.hiddenTypes));
    if (!entry.content.kind.isEmpty())
        object.insert(QStringLiteral("content"), contentObject(entry.content));
    return object;
}

QJsonObject installationObject(const PlannedInstallation &installation)
{
    using Kind = Effect::Kind;
    QJsonArray copies, folders, removals, links, keys, registry;
    for (const Effect &effect : installation.effects(Kind::Copies))
        copies.append(QJsonObject{{QStringLiteral("from"), effect.source},
                                  {QStringLiteral("to"), effect.path},
                                  {QStringLiteral("keeps_existing"), effect.keepsExisting}});
    for (const Effect &effect : installation.effects(Kind::MakesFolder))
        folders.append(effect.path);
    for (const Effect &effect : installation.effects(Kind::Removes))
        removals.append(effect.path);
    for (const Effect &effect : installation.effects(Kind::Links))
        links.append(QJsonObject{{QStringLiteral("link"), effect.path},
                                 {QStringLiteral("target"), effect.source}});
    for (const Effect &effect : installation.effects(Kind::SetsKey)) {
        QJsonObject key{{QStringLiteral("store"), effect.path},
                        {QStringLiteral("key"), effect.key},
                        {QStringLiteral("value"), effect.value}};
        if (!effect.source.isEmpty())
            key.insert(QStringLiteral("value_from_file"), effect.source);
        keys.append(key);
    }
    for (const Effect &effect : installation.effects(Kind::SetsRegistry))
        registry.append(QJsonObject{{QStringLiteral("key"), effect.path},
                                    {QStringLiteral("name"), effect.key},
                                    {QStringLiteral("value"), effect.value}});
    return {{QStringLiteral("type"), installation.type->typeKey()},
            {QStringLiteral("type_name"), installation.type->name()},
            {QStringLiteral("file"), installation.file},
            {QStringLiteral("commands"), QJsonArray::fromStringList(installation.commands)},
            {QStringLiteral("copies"), copies},
            {QStringLiteral("folders"), folders},
            {QStringLiteral("removes"), removals},
            {QStringLiteral("links"), links},
            {QStringLiteral("keys"), keys},
            {QStringLiteral("registry"), registry},
            {QStringLiteral("tools"), QJsonArray::fromStringList(installation.tools)}};
}

} // namespace

QJsonDocument jsonReport(const StickCheck &check)
{
    QJsonArray entries;
    for (const CheckedEntry &entry : check.entries)
        entries.append(entryObject(entry));
    QJsonArray installations;
    for (const PlannedInstallation &installation : check.installations)
        installations.append(installationObject(installation));
    const QJsonObject client{{QStringLiteral("legacy_registry"), check.client.legacyMode},
                             {QStringLiteral("os_variant_marker"), check.client.osVariantMarker},
                             {QStringLiteral("modality"),
                              check.client.modality ? QJsonValue(check.client.modality->trimmed())
                                                    : QJsonValue(QJsonValue::Null)}};
    QJsonObject report{{QStringLiteral("directory"), check.dir},
                       {QStringLiteral("client"), client},
                       {QStringLiteral("entries"), entries},
                       {QStringLiteral("offered"), check.offeredCount()},
                       {QStringLiteral("installations"), installations}};
    if (const std::optional<RefusedDirectory> &refused = check.refusedDirectory) {
        QJsonObject why{{QStringLiteral("reason"), refused->code},
                        {QStringLiteral("why"), refused->why}};
        if (!refused->detail.isEmpty())
            why.insert(QStringLiteral("detail"), refused->detail);
        report.insert(QStringLiteral("refused_directory"), why);
    }
    return QJsonDocument(report);
}

#include "JsonReport.h"

#include "InstallationJson.h"
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

} // namespace

QJsonDocument jsonReport(const StickCheck &check)
{
    QJsonArray entries;
    for (const CheckedEntry &entry : check.entries)
        entries.append(entryObject(entry));
    QJsonArray installations;
    for (const PlannedInstallation &installation : check.installations)
        installations.append(record::plannedInstallationJson(*installation.type, installation.file,
                                                             installation.steps));
    const QJsonObject client{{QStringLiteral("legacy_registry"), check.client.legacyMode},
                             {QStringLiteral("os_variant_marker"), check.client.osVariantMarker},
                             {QStringLiteral("modality"),
                              check.client.modality ? QJsonValue(check.client.modality->trimmed())
                                                    : QJsonValue(QJsonValue::Null)}};
    QJsonObject report{{QStringLiteral("directory"), check.dir},
                       {QStringLiteral("client"), client},
                       {QStringLiteral("entries"), entries},
                       {QStringLiteral("offered"), check.offeredCount()},
                       {QStringLiteral("installations"), installations},
                       {QStringLiteral("collects_reports"), check.collectsReports}};
    if (const std::optional<RefusedDirectory> &refused = check.refusedDirectory) {
        QJsonObject why{{QStringLiteral("reason"), refused->code},
                        {QStringLiteral("why"), refused->why}};
        if (!refused->detail.isEmpty())
            why.insert(QStringLiteral("detail"), refused->detail);
        report.insert(QStringLiteral("refused_directory"), why);
    }
    return QJsonDocument(report);
}

#include "TextReport.h"

#include "ReportsFolder.h"

#include "PackageTypes.h"
#include "StickCheck.h"

#include <QStringList>

namespace {

const int nameWidth = 32;

QString typeNames(const QList<const PackageType *> &types)
{
    QStringList names;
    for (const PackageType *type : types)
        names.append(type->name());
    return names.join(QStringLiteral(", "));
}

// The line saying what the file is, then one per finding, with the types it concerns where it
// does not concern them all.
QString contentLines(const ContentReport &content, const QString &indent)
{
    if (content.kind.isEmpty())
        return {};
    QString lines =
        indent + QStringLiteral("is: ") + printable(content.summary) + QLatin1Char('\n');
    for (const Finding &finding : content.findings) {
        QStringList types;
        for (const QString &key : finding.types)
            types.append(PackageTypes::find(key)->name());
        lines += indent +
                 QStringLiteral("%1 %2: %3")
                     .arg(severityName(finding.severity), finding.code, printable(finding.text));
        if (!types.isEmpty())
            lines += QStringLiteral(" (as %1)").arg(types.join(QStringLiteral(", ")));
        lines += QLatin1Char('\n');
    }
    return lines;
}

QString entryLines(const CheckedEntry &entry)
{
    const QString indent(nameWidth + 3, QLatin1Char(' '));
    QString line =
        QStringLiteral("  ") + printable(entry.name).leftJustified(nameWidth) + QLatin1Char(' ');
    if (line.size() > nameWidth + 3)
        line += QLatin1Char('\n') + indent;
    if (entry.reason == NotOffered::No)
        line += typeNames(entry.types);
    else if (entry.reason == NotOffered::InSubfolder)
        line += entry.why;
    else
        line += QStringLiteral("not offered: ") + printable(entry.why);
    line += QLatin1Char('\n');
    for (const TypeRefusal &refusal : entry.refusedAs)
        line += indent + QStringLiteral("note: not offered as %1: %2\n")
                             .arg(refusal.type->name(), printable(refusal.why));
    if (!entry.hiddenTypes.isEmpty()) {
        const QString name = entry.name;
        const QString inner = name.left(name.lastIndexOf(QLatin1Char('.')));
        line +=
            indent + QStringLiteral("note: \"%1\" hides %2 behind %3; as \"%4\" it would be: %5\n")
                         .arg(printable(name), inner.mid(inner.lastIndexOf(QLatin1Char('.'))),
                              name.mid(name.lastIndexOf(QLatin1Char('.'))), printable(inner),
                              typeNames(entry.hiddenTypes));
    }
    line += contentLines(entry.content, indent);
    return line;
}

// One labelled section of a plan; nothing when it is empty.
QString section(const QString &label, const QStringList &items)
{
    if (items.isEmpty())
        return {};
    QString text = QStringLiteral("    %1:\n").arg(label);
    for (const QString &item : items)
        text += QStringLiteral("      ") + printable(item) + QLatin1Char('\n');
    return text;
}

QString planLines(const PlannedInstallation &installation)
{
    using Kind = Effect::Kind;
    QStringList copies, folders, removals, links, keys, registry;
    for (const Effect &effect : installation.effects(Kind::Copies))
        copies.append(effect.source + QStringLiteral(" -> ") + effect.path +
                      (effect.keepsExisting ? QStringLiteral(" (unless it exists)") : QString()));
    for (const Effect &effect : installation.effects(Kind::MakesFolder))
        folders.append(effect.path);
    for (const Effect &effect : installation.effects(Kind::Removes))
        removals.append(effect.path);
    for (const Effect &effect : installation.effects(Kind::Links))
        links.append(effect.path + QStringLiteral(" -> ") + effect.source);
    for (const Effect &effect : installation.effects(Kind::SetsKey)) {
        const QString value = effect.source.isEmpty()
                                  ? effect.value
                                  : QStringLiteral("the text of %1 (%2 characters)")
                                        .arg(effect.source)
                                        .arg(effect.value.size());
        keys.append(QStringLiteral("%1 %2 = %3").arg(effect.path, effect.key, value));
    }
    for (const Effect &effect : installation.effects(Kind::SetsRegistry))
        registry.append(QStringLiteral("%1 %2 = %3").arg(effect.path, effect.key, effect.value));
    return QStringLiteral("  %1: %2\n")
               .arg(installation.type->name(), printable(installation.file)) +
           section(QStringLiteral("commands"), installation.commands) +
           section(QStringLiteral("copies"), copies) + section(QStringLiteral("folders"), folders) +
           section(QStringLiteral("removes"), removals) + section(QStringLiteral("links"), links) +
           section(QStringLiteral("keys"), keys) + section(QStringLiteral("registry"), registry) +
           QStringLiteral("    tools: %1\n").arg(installation.tools.join(QLatin1Char(' ')));
}

} // namespace

QString clientDescription(const StickCheck &check)
{
    QStringList parts;
    parts.append(check.client.legacyMode ? QStringLiteral("legacy registry")
                                         : QStringLiteral("configuration stores"));
    parts.append(check.client.osVariantMarker ? QStringLiteral("OS variant marker")
                                              : QStringLiteral("no OS variant marker"));
    parts.append(
        check.client.modality
            ? QStringLiteral("modality \"%1\"").arg(printable(check.client.modality->trimmed()))
            : QStringLiteral("no modality"));
    return parts.join(QStringLiteral(", "));
}

QString textReport(const StickCheck &check)
{
    QString text =
        QStringLiteral("Stick:  %1\nClient: %2\nReports: %3\n\nEntries:\n")
            .arg(printable(check.dir), clientDescription(check),
                 check.collectsReports ? QStringLiteral("one file per installation in %1/")
                                             .arg(QLatin1String(record::reportsFolderName))
                                       : QStringLiteral("none (no real folder %1/ at the top)")
                                             .arg(QLatin1String(record::reportsFolderName)));
    if (check.refusedDirectory)
        text += QStringLiteral("  (none looked at: the program refuses this mount directory: %1)\n")
                    .arg(printable(check.refusedDirectory->why));
    else if (check.entries.isEmpty())
        text += QStringLiteral("  (none)\n");
    for (const CheckedEntry &entry : check.entries)
        text += entryLines(entry);
    if (!check.installations.isEmpty()) {
        text += QStringLiteral("\nInstallations, each as if that file alone were picked:\n");
        for (const PlannedInstallation &installation : check.installations)
            text += planLines(installation);
    }
    text += QStringLiteral("\nOffered: %1 of %2 entries. Installations planned: %3.")
                .arg(check.offeredCount())
                .arg(check.entries.size())
                .arg(check.installations.size());
    int errors = 0, warnings = 0, read = 0;
    for (const CheckedEntry &entry : check.entries) {
        errors += entry.content.count(Finding::Severity::Error);
        warnings += entry.content.count(Finding::Severity::Warning);
        read += entry.content.kind.isEmpty() ? 0 : 1;
    }
    if (read > 0)
        text += QStringLiteral(" Content read of %1 files: errors %2, warnings %3.")
                    .arg(read)
                    .arg(errors)
                    .arg(warnings);
    text += QLatin1Char('\n');
    return text;
}

#include "StickCheck.h"

#include "ReportsFolder.h"

#include "Dispatch.h"
#include "InstallJob.h"
#include "PackageTypes.h"
#include "RcList.h"
#include "StickEntry.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QHash>
#include <QSet>

#include <algorithm>

namespace {

bool localeLess(const QString &a, const QString &b)
{
    return QString::localeAwareCompare(a, b) < 0;
}

QList<const PackageType *> typesMatching(const QString &name)
{
    QList<const PackageType *> matching;
    for (const PackageType *type : PackageTypes::inWindowOrder()) {
        if (QDir::match(type->patternList(), name))
            matching.append(type);
    }
    return matching;
}

// Why discovery leaves an entry of the mount directory out, or NoPattern when it would offer
// it but no type's pattern matches.
NotOffered reasonOf(StickEntry::Verdict verdict)
{
    using V = StickEntry::Verdict;
    switch (verdict) {
    case V::Offered:
        break;
    case V::Hidden:
        return NotOffered::Hidden;
    case V::Folder:
        return NotOffered::Folder;
    case V::NotAFile:
        return NotOffered::NotAFile;
    case V::RefusedName:
        return NotOffered::RefusedName;
    case V::MisleadingName:
        return NotOffered::MisleadingName;
    case V::DanglingLink:
        return NotOffered::DanglingLink;
    case V::LinkLoop:
        return NotOffered::LinkLoop;
    case V::LinkToNonFile:
        return NotOffered::LinkToNonFile;
    case V::LeavesStick:
        return NotOffered::LeavesStick;
    case V::BlankFreeName:
        return NotOffered::BlankFreeName;
    case V::ClientTreeName:
        return NotOffered::ClientTreeName;
    }
    return NotOffered::NoPattern;
}

void classify(CheckedEntry &entry, const StickEntry &verdict)
{
    entry.reason = reasonOf(verdict.verdict);
    entry.detail = verdict.detail;
    entry.why = verdict.offered() ? QStringLiteral("no type's pattern matches") : verdict.reason();
    if (entry.reason == NotOffered::Folder)
        entry.why += QStringLiteral("; the files in it are not looked at");
}

// The types entry's name matches that refuse it, although the name rule offers it.
QList<TypeRefusal> refusalsByType(const StickDirectory &stick, const CheckedEntry &entry,
                                  const StickEntry &verdict)
{
    QList<TypeRefusal> refusals;
    for (const PackageType *type : typesMatching(entry.name)) {
        const StickEntry asType = stick.classifyAs(*type, entry.name, verdict);
        if (!asType.offered())
            refusals.append({type, reasonOf(asType.verdict), asType.detail, asType.reason()});
    }
    return refusals;
}

// Files at any depth below a folder of the stick, sorted by their path.
QList<CheckedEntry> filesInside(const QString &dir, const QString &folder)
{
    QStringList names;
    QDirIterator files(dir + QLatin1Char('/') + folder,
                       QDir::Files | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot,
                       QDirIterator::Subdirectories);
    const QDir root(dir);
    while (files.hasNext())
        names.append(root.relativeFilePath(files.next()));
    std::sort(names.begin(), names.end(), localeLess);
    QList<CheckedEntry> entries;
    for (const QString &name : qAsConst(names)) {
        CheckedEntry entry;
        entry.name = name;
        entry.reason = NotOffered::InSubfolder;
        entry.why = QStringLiteral("not looked at: inside a subfolder");
        entries.append(entry);
    }
    return entries;
}

PlannedInstallation plan(const PackageType *type, const QString &dir, const QString &file,
                         const ClientState &client)
{
    InstallJob job(*type, dir, {file});
    PlanningClient planning(client);
    installers::dispatch(&job, planning);
    return {type, file, planning.steps(), planning.commands(), planning.tools()};
}

} // namespace

QList<Effect> PlannedInstallation::effects(Effect::Kind kind) const
{
    QList<Effect> found;
    for (const Step &step : steps) {
        for (const Effect &effect : step.effects) {
            if (effect.kind == kind)
                found.append(effect);
        }
    }
    return found;
}

int StickCheck::offeredCount() const
{
    return static_cast<int>(
        std::count_if(entries.begin(), entries.end(),
                      [](const CheckedEntry &entry) { return entry.reason == NotOffered::No; }));
}

int StickCheck::contentErrorCount() const
{
    return static_cast<int>(
        std::count_if(entries.begin(), entries.end(), [](const CheckedEntry &entry) {
            return entry.content.count(Finding::Severity::Error) > 0;
        }));
}

StickCheck checkStick(const QString &dir, const ClientState &client)
{
    StickCheck check{dir, client, refusedMountDirectory(dir), {}, {}, record::collectsReports(dir)};
    if (check.refusedDirectory)
        return check;
    RcList found(dir);
    scanEveryType(found);
    QHash<QString, QSet<QString>> offered; // file name -> type keys
    for (const RcEntry &entry : qAsConst(found.entries))
        offered[entry.file].insert(entry.type);
    const auto windowOrder = PackageTypes::inWindowOrder();

    const StickDirectory stick(dir);
    QFileInfoList listing = QDir(dir).entryInfoList(
        QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Unsorted);
    std::sort(listing.begin(), listing.end(), [](const QFileInfo &a, const QFileInfo &b) {
        return localeLess(a.fileName(), b.fileName());
    });
    for (const QFileInfo &info : qAsConst(listing)) {
        CheckedEntry entry;
        entry.name = info.fileName();
        for (const PackageType *type : windowOrder) {
            if (offered.value(entry.name).contains(type->typeKey()))
                entry.types.append(type);
        }
        const StickEntry verdict = stick.classify(info);
        if (verdict.offered())
            entry.refusedAs = refusalsByType(stick, entry, verdict);
        if (entry.types.isEmpty() && !entry.refusedAs.isEmpty()) {
            const TypeRefusal first = entry.refusedAs.takeFirst();
            entry.refusedAs.clear();
            entry.reason = first.reason;
            entry.detail = first.detail;
            entry.why = first.why;
        } else if (entry.types.isEmpty()) {
            classify(entry, verdict);
        }
        const int lastDot = entry.name.lastIndexOf(QLatin1Char('.'));
        if (info.isFile() && entry.name.left(lastDot).contains(QLatin1Char('.'))) {
            const QList<const PackageType *> inner = typesMatching(entry.name.left(lastDot));
            if (inner != typesMatching(entry.name))
                entry.hiddenTypes = inner;
        }
        check.entries.append(entry);
        if (entry.reason == NotOffered::Folder)
            check.entries.append(filesInside(dir, entry.name));
        for (const PackageType *type : qAsConst(entry.types))
            check.installations.append(plan(type, dir, entry.name, client));
    }
    return check;
}

QString reasonCode(NotOffered reason)
{
    switch (reason) {
    case NotOffered::No:
        return {};
    case NotOffered::Hidden:
        return QStringLiteral("hidden");
    case NotOffered::Folder:
        return QStringLiteral("folder");
    case NotOffered::NotAFile:
        return QStringLiteral("not-a-file");
    case NotOffered::RefusedName:
        return QStringLiteral("refused-name");
    case NotOffered::MisleadingName:
        return QStringLiteral("misleading-name");
    case NotOffered::DanglingLink:
        return QStringLiteral("dangling-link");
    case NotOffered::LinkLoop:
        return QStringLiteral("link-loop");
    case NotOffered::LinkToNonFile:
        return QStringLiteral("link-to-non-file");
    case NotOffered::LeavesStick:
        return QStringLiteral("link-leaves-stick");
    case NotOffered::BlankFreeName:
        return QStringLiteral("blank-free-name");
    case NotOffered::ClientTreeName:
        return QStringLiteral("client-tree-name");
    case NotOffered::NoPattern:
        return QStringLiteral("no-pattern");
    case NotOffered::InSubfolder:
        return QStringLiteral("in-subfolder");
    }
    return {};
}

#ifndef STICKCHECK_H
#define STICKCHECK_H

#include "Finding.h"
#include "PlanningClient.h"
#include "StickEntry.h"

#include <QList>
#include <QString>
#include <QStringList>

struct PackageType;

// Why an entry of the stick is not offered: discovery's verdicts, and the two the check adds.
enum class NotOffered {
    No, // it is offered
    Hidden,
    Folder,
    NotAFile,
    RefusedName,
    MisleadingName,
    DanglingLink,
    LinkLoop,
    LinkToNonFile,
    LeavesStick,
    BlankFreeName,
    ClientTreeName,
    NoPattern,   // a file no type's pattern matches
    InSubfolder, // a file inside a folder of the stick: not looked at
};

// Why an entry is not offered as one type that its name matches.
struct TypeRefusal
{
    const PackageType *type = nullptr;
    NotOffered reason = NotOffered::No;
    QString detail;
    QString why;
};

// One entry of the mount directory, or a file inside one of its subfolders.
struct CheckedEntry
{
    QString name; // relative to the mount directory; "folder/file" inside a subfolder
    QList<const PackageType *> types; // the types that offer it, in the window's order
    NotOffered reason = NotOffered::No;
    QString detail; // the refused character, or where a link leads
    QString why;    // the reason in words; empty when offered
    // The types its name matches that refuse it although others offer it (an Imprivata
    // picture named like one of the client's own files).
    QList<TypeRefusal> refusedAs;
    // A known extension hidden behind another ("logo.png.txt"): the types the name would be
    // offered as without its last extension.
    QList<const PackageType *> hiddenTypes;
    ContentReport content; // what an offered file holds; kind empty when not read
};

// What installing one offered file as one type would do.
struct PlannedInstallation
{
    const PackageType *type = nullptr;
    QString file;
    QList<Step> steps;
    QStringList commands;
    QStringList tools;

    // The effects of one kind, in order.
    QList<Effect> effects(Effect::Kind kind) const;
};

// What a stick would do to a client, found with the program's own discovery and installers.
struct StickCheck
{
    QString dir; // as given, as the program would be given it
    ClientState client;
    // Why the program refuses the mount directory itself, offering nothing; nothing when it
    // does not.
    std::optional<RefusedDirectory> refusedDirectory;
    QList<CheckedEntry> entries; // sorted as the window sorts names
    QList<PlannedInstallation> installations;
    // The stick asks each installation for a report (a real folder at its top).
    bool collectsReports = false;

    int offeredCount() const;
    // Offered files whose content has an error.
    int contentErrorCount() const;
};

// Lists dir, runs discovery on it and plans every offered file of every type on a client in
// the given state. Reads the stick and nothing else; writes nothing.
StickCheck checkStick(const QString &dir, const ClientState &client);

// A stable word for the reason ("hidden", "dangling-link", ...), for scripts.
QString reasonCode(NotOffered reason);

#endif

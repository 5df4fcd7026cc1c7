#ifndef INSTALLOUTCOME_H
#define INSTALLOUTCOME_H

#include "Step.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

struct PackageType;

// How one planned effect stood on the client after the installation.
enum class Verification {
    Verified,   // the client holds what the plan left there
    Failed,     // it does not; failure says how
    Superseded, // a later effect on the same path, key or value is the one checked
    // A copy that keeps an existing file found one there: the new file was not installed, as
    // the toolkit's copy means to.
    KeptExisting,
};

struct EffectOutcome
{
    Effect effect;
    Verification verification = Verification::Verified;
};

// One step as it was performed, with its status and what the verification found.
struct StepOutcome
{
    Step step; // command line (empty for a toolkit step), effects, step.statusCounts()
    // The shell's exit status; none for a toolkit step and where the platform gives none.
    std::optional<int> status;
    bool done = true;             // a toolkit step was carried out (see StepResult)
    QList<EffectOutcome> effects; // one per step.effects, in the same order
    // Why the step failed, in an administrator's words (its status or the first effect that
    // did not verify); empty when it did not fail.
    QString failure;

    bool failed() const { return !failure.isEmpty(); }
};

// A chosen file that the safety rules left out just before its commands: a failure of the
// installation.
struct SkippedFile
{
    QString file; // as picked
    QString reason;
    int beforeStep = 0; // how many steps had been performed when it was left out
};

// What one installation did and whether it took effect: made by installers::install()
// (Installation.h) on the installer's worker thread, shown by the dialog, and kept in the
// record.
struct InstallOutcome
{
    const PackageType *type = nullptr; // the job's package type; never null once made
    QString dir;                       // the mount directory, as the job had it
    QStringList files;                 // the files as picked, before anything was left out
    QList<StepOutcome> steps;          // in the order they were performed
    QList<SkippedFile> skipped;
    int routineResult = 0; // what the installer routine returned (1 ran, 0 refused the job)

    // Failed steps and skipped files.
    int failureCount() const;
    // The first failure in an administrator's words; empty on success.
    QString firstFailure() const;
    bool succeeded() const { return failureCount() == 0; }
};

#endif

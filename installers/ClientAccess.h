#ifndef CLIENTACCESS_H
#define CLIENTACCESS_H

#include "Step.h"

#include <QList>
#include <QPair>
#include <QString>

#include <optional>

struct InstallJob;

using KeyValues = QList<QPair<QString, QString>>;

// How a step went, as far as the client says at once; the effects are verified afterwards.
struct StepResult
{
    // The shell's exit status; none for a toolkit step and where the platform gives none.
    std::optional<int> status;
    // A toolkit step was carried out (a store that does not exist is not written).
    bool done = true;
};

// The one way installers reach the client. The program passes RealClient, which runs and
// writes; the stick check passes a planning client, which records and does nothing. Every
// effect of an installer and every fact of the client that changes what it does goes through
// here, so that the two cannot disagree.
class ClientAccess
{
public:
    ClientAccess() = default;
    virtual ~ClientAccess();
    ClientAccess(const ClientAccess &) = delete;
    ClientAccess &operator=(const ClientAccess &) = delete;

    // The client's settings are in the legacy INI registry rather than configuration stores.
    virtual bool isLegacyMode() = 0;
    // The client is the OS variant that carries the marker file.
    virtual bool hasOsVariantMarker() = 0;
    // The first line of the client's modality file with its line end; std::nullopt when the
    // client has none, an empty text when it cannot be read.
    virtual std::optional<QString> modality() = 0;
    // MD5 of a file on the client as 32 lower-case hexadecimal digits; empty when it cannot be
    // read.
    virtual QString digest(const QString &path) = 0;
    // The safety rules left a chosen file out just before its commands.
    virtual void fileSkipped(const QString &file, const QString &reason);

    // The re-check of each chosen file, which every installer makes immediately before the
    // commands that read that file (an installer of one file: before its first command): true
    // when they may run. The stick is a device someone else controls, and a file may have
    // changed since the scan. A refused file gets one debug line and fileSkipped(), and its
    // commands do not run.
    bool mayRead(const InstallJob &job, const QString &file);
    // Whether a copy of file may be written to destination in the client's tree: not through
    // a link standing there. A refusal is reported as for mayRead().
    bool mayWriteTo(const QString &file, const QString &destination);
    // Why a chosen file may not be read now, or nothing. The program judges it again by the
    // scan's rule (still a regular file, a link still ending at a regular file on the stick, a
    // certificate's blank-free name still free; one that is merely gone stays, and its commands
    // fail as they always did); the stick check answers as its scan did a moment before.
    virtual std::optional<QString> judgeAgain(const InstallJob &job, const QString &file) = 0;
    // Why a copy may not be written to destination (a link stands there), or nothing.
    virtual std::optional<QString> refusesDestination(const QString &destination) = 0;

    // Performs one step. A shell step's line runs through the client's shell exactly as given
    // (a line ending in "&" returns at once); a toolkit step does what its effects say.
    virtual StepResult perform(const Step &step) = 0;

    // Shorthands that build the step and perform it.
    void run(StepKind kind, const QString &commandLine, const QList<Effect> &effects = {});
    // The toolkit's copy: never replaces an existing file or writes through a link. It reads
    // only a file mayRead() accepted, opened without blocking or following a link, and only
    // while it is still that regular file.
    void copyFile(const QString &from, const QString &to);
    // Makes a folder and its missing parents.
    void makeFolder(const QString &folder);
    // Sets values in an existing configuration store, all at once; false, and nothing
    // written, when the store does not exist.
    bool writeStore(const QString &store, const KeyValues &values);
    // Sets a text value under a key of the legacy registry (HKEY_LOCAL_MACHINE), creating
    // the key.
    void writeRegistry(const QString &key, const QString &name, const QString &value);
};

#endif

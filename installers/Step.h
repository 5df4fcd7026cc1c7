#ifndef STEP_H
#define STEP_H

#include "Effect.h"

#include <QList>
#include <QString>

// What kind of step a shell command line is, for one question: does its exit status say whether
// the installation worked? The answer for each kind is one row of the table in Step.cpp.
enum class StepKind {
    ConfigCopy, // cp into the configuration tree, /etc/openvpn or the Citrix picture
    ClientTool, // certs, ppddb, tar-upgrade, getxmlconfig, setwp, rdpimport, reload_desktop, freeze
    StopDesktop,  // killall of a desktop, which need not be running
    Housekeeping, // rm of what may not be there, rm -rf, mkdir -p, ln -sf, sync, sleep
    Background,   // a line ending in "&": the shell returns before the program has done anything
    VpnLink,      // the OpenVPN ln -s, which fails harmlessly when the link is already there
    ReloadSignal, // touch of the Imprivata reload file, whose folder a client may not have
    StickCopy,    // the certificate's blank-free copy on the stick and its removal
    Toolkit,      // done by the program itself (copy, folder, store, registry): no status
};

// One step of an installer: what the program runs or does, what that does to the client, and
// whether its exit status counts. Built once by the installer; the program performs it and
// verifies its effects, the stick check prints it.
struct Step
{
    StepKind kind = StepKind::Toolkit;
    QString command;       // the shell line, run exactly as given; empty for a toolkit step
    QList<Effect> effects; // empty when the step only runs a program

    // A shell command line of a kind, with what it does.
    static Step shell(StepKind kind, const QString &command, const QList<Effect> &effects = {});
    // Something the program does itself, entirely described by its effects: a copy that keeps
    // an existing file, a folder, keys of one store, or one registry value.
    static Step toolkit(const QList<Effect> &effects);

    // Whether a non-zero exit status makes the step fail (its kind's row of the table).
    bool statusCounts() const;
    // Why the status counts or does not, in a few words, for the record.
    const char *statusRule() const;
};

// The copy whose bytes path holds once steps have run, found back through the links they make to
// the last copy made there; null when no copy leads to path. Bounded, as links may form a loop.
const Effect *copyBehind(const QList<const Step *> &steps, QString path);

#endif

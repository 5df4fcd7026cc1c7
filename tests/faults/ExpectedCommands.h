#ifndef EXPECTEDCOMMANDS_H
#define EXPECTEDCOMMANDS_H

#include <QString>
#include <QStringList>

// What one installation must run on the simulated client in its initial state (no OS-variant
// marker, no /boot/modality): the installers' command templates filled with the job's
// directory and names, and the calls the client's tools then receive.
struct ExpectedRun
{
    QStringList shell;      // the shell log, exactly and in order
    QStringList calls;      // the stand-in calls of commands that run to their end, in order
    QStringList background; // calls of tools started with "&": anywhere in the log, any order
};

// The picture digests are those of the installed copies as they are now, so build this after
// the installation has run.
ExpectedRun expectedRun(const QString &type, const QString &dir, const QStringList &files);

// A call log line: the tool, then each argument in square brackets, escaped as the stand-ins
// write it.
QString callLine(const QString &tool, const QStringList &args = {});

// The tool of a call log line.
QString toolOf(const QString &line);

#endif

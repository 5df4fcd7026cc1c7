#ifndef SIMCLIENT_H
#define SIMCLIENT_H

#include <QString>
#include <QStringList>

// What tests see of the simulated client they run in (sim/run). Every test executable that
// runs an installer or the program calls requireSim() first.
namespace simclient {

// Ends the test executable at once unless it runs inside the simulated client.
void requireSim();

// The command lines the platform's shell runner ran, oldest first.
QStringList shellLog();

// The calls the client's stand-in tools recorded, oldest first, one line per call: the tool's
// name, then each argument in square brackets ("rdpimport [/media/my] [file.rdp]"), so that
// argument splitting is visible. In an argument, "\\", "]" and a line break are written as
// "\\\\", "\\]" and "\\n".
QStringList calls();
// Only the calls of one tool.
QStringList calls(const QString &tool);

// Empties both logs, so that a test case sees only its own commands.
void clearLogs();

// Every path the test has written, changed or removed in the simulated client so far ("/etc/x"),
// folders included.
QStringList changedPaths();

// A fresh directory under /tmp/sticks holding the given files; each file's content is its own
// name unless contents gives one.
QString makeStick(const QStringList &files, const QList<QByteArray> &contents = {});

// The whole content of a file, or an empty array.
QByteArray readFile(const QString &path);

// A value of a configuration store of the client ("user/system/desktop"), read through the
// platform; defaultValue when the store or key is missing.
QString storeValue(const QString &storePath, const QString &key,
                   const QString &defaultValue = QString());

// The driver names listed in the client's printer driver database, as its ppddb writes it (one
// line per driver: name, tab, model).
QStringList printerDatabaseDrivers();

} // namespace simclient

#endif

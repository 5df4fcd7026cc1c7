#ifndef INSTALLERSUPPORT_H
#define INSTALLERSUPPORT_H

#include "ClientPaths.h"

#include <QString>

#include <utility>

class QFile;
struct InstallJob;
struct stat;

// What the installer routines and the clients share: command templates, source paths, digests.
namespace installers {

using clientpaths::filesDir;
using clientpaths::inTree;
using clientpaths::TreeName;

// Fills the numbered placeholders %1, %2, ... of a command template in one pass, so a "%1"
// that a value brings along stays as it is.
template <typename... Args> QString fill(const char *commandTemplate, Args &&...values)
{
    return QString::fromLatin1(commandTemplate).arg(std::forward<Args>(values)...);
}

// The path of a chosen file on the stick: "%1/%2" with the job's directory and the bare name.
QString sourcePath(const InstallJob &job, const QString &file);

// A word for a position where a command leaves a path bare: written as it is when the shell
// reads it as exactly itself (ASCII letters, digits and _ . / + , : = @ % -), otherwise whole in
// single quotes, a ' inside as '\''. An ordinary name so keeps the client's command byte for
// byte, and a blank, #, ~, glob or quote in a name can no longer split, comment out or expand it.
QString shellWord(const QString &word);

// Opens path for reading without blocking (a FIFO or a device can never hang the caller), and
// without following a link at its end unless followLink: true only when it is a regular file.
// status, when given, receives what the open file is.
bool openRegularFile(QFile &file, const QString &path, bool followLink,
                     struct stat *status = nullptr);

// MD5 of a regular file as 32 lower-case hexadecimal digits; empty when the file cannot be
// opened or read.
QString pictureDigest(const QString &path);

} // namespace installers

#endif

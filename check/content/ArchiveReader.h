#ifndef ARCHIVEREADER_H
#define ARCHIVEREADER_H

#include "Finding.h"

#include <QString>

// A firmware update archive read from fd: whether it opens, its entries and unpacked size, and
// entries that would land outside the folder it is unpacked in. clientFormat: the name is one
// of the client's own formats (.tzupg), which need not be an archive this check knows.
ContentReport readFirmwareArchive(int fd, bool clientFormat);

// The remote-support Debian package read from fd: name, version, architecture (against the
// client's, arch) and the maintainer scripts it carries.
ContentReport readDebianPackage(int fd, const QString &arch);

#endif

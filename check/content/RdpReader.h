#ifndef RDPREADER_H
#define RDPREADER_H

#include "Finding.h"

#include <QByteArray>

// A remote desktop connection file ("name:type:value" lines, often UTF-16 with a byte-order
// mark): the server, the user, what it redirects, and a stored password or alternate shell.
ContentReport readRdpFile(const QByteArray &data);

#endif

#ifndef CLIENTPATHS_H
#define CLIENTPATHS_H

#include <QString>

// Where the client keeps what is installed on it.
namespace clientpaths {

// The client's files folder in its configuration tree: what lies there survives a restart once
// the tree has been frozen.
inline QString filesDir()
{
    return QStringLiteral("/tmp/config/files");
}

} // namespace clientpaths

#endif

#ifndef OPENVPNREADER_H
#define OPENVPNREADER_H

#include "Finding.h"

#include <QByteArray>

// An OpenVPN client profile, read by the configuration file's rules: one directive a line,
// comments from '#' or ';', double and single quotes, backslash escapes, inline <tag> blocks.
ContentReport readOpenVpnProfile(const QByteArray &data);

#endif

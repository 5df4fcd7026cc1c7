#ifndef STICKSNAPSHOT_H
#define STICKSNAPSHOT_H

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

// Every entry under a directory, by its raw path bytes (names that are not UTF-8 included):
// a regular file by the SHA-256 of its content, a link by its target, a folder, or another
// kind of file. Links are not followed.
using StickSnapshot = QMap<QByteArray, QByteArray>;

StickSnapshot snapshotStick(const QString &dir);

// The entries that differ between two snapshots, one line each, for a failure message.
QStringList snapshotDifferences(const StickSnapshot &before, const StickSnapshot &after);

#endif

#ifndef INSTALLATIONJSON_H
#define INSTALLATIONJSON_H

#include "InstallOutcome.h"

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

struct PackageType;

// One installation as JSON, as doc/installation.schema.json describes it: the stick check's
// plan and the program's report are written by the same code, so they cannot drift apart.
namespace record {

// What installing file alone as type would do: its commands, effects, tools and steps.
QJsonObject plannedInstallationJson(const PackageType &type, const QString &file,
                                    const QList<Step> &steps);

// An installation that ran: the same facts, plus the files as picked with their SHA-256
// (sha256s in the order of outcome.files; empty where a file could not be read), each step's
// status and each effect's verification, the files left out, and the outcome.
QJsonObject performedInstallationJson(const InstallOutcome &outcome, const QStringList &sha256s);

// The programs the command lines run, each once, in order of first use.
QStringList commandTools(const QStringList &commands);

} // namespace record

#endif

#ifndef JSONREPORT_H
#define JSONREPORT_H

#include <QJsonDocument>

struct StickCheck;

// The same facts as the text report, as one document for scripts (its shape is in the README).
QJsonDocument jsonReport(const StickCheck &check);

#endif

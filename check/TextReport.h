#ifndef TEXTREPORT_H
#define TEXTREPORT_H

#include "TextLines.h"

#include <QString>

struct StickCheck;

// The check as text for an administrator: the client assumed, every entry with the types that
// offer it or why none does, then each installation's plan.
QString textReport(const StickCheck &check);

// One line on the client assumed ("configuration stores, no OS variant marker, ...").
QString clientDescription(const StickCheck &check);

#endif

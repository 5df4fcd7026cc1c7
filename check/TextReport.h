#ifndef TEXTREPORT_H
#define TEXTREPORT_H

#include <QString>

struct StickCheck;

// The check as text for an administrator: the client assumed, every entry with the types that
// offer it or why none does, then each installation's plan.
QString textReport(const StickCheck &check);

// Control characters as escapes (a line break as \n), so that a name stays on its line.
QString printable(const QString &text);

// One line on the client assumed ("configuration stores, no OS variant marker, ...").
QString clientDescription(const StickCheck &check);

#endif

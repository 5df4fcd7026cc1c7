#ifndef TEXTLINES_H
#define TEXTLINES_H

#include <QString>

// Control characters as escapes (a line break as \n), so that a name stays on its line.
QString printable(const QString &text);

// A piece of a file quoted in a finding: printable, and shortened when long.
QString quoted(const QString &text);

#endif

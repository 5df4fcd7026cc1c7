#ifndef TEXTLINES_H
#define TEXTLINES_H

#include <QByteArray>
#include <QString>

// Control characters as escapes (a line break as \n), so that a name stays on its line.
QString printable(const QString &text);

// A piece of a file quoted in a finding: printable, and shortened when long.
QString quoted(const QString &text);

// The text of a file in UTF-16 with a byte-order mark, UTF-8 (with or without one) or, failing
// that, Latin-1; encoding names which.
QString decodeText(const QByteArray &data, QString *encoding);

#endif

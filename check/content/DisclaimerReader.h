#ifndef DISCLAIMERREADER_H
#define DISCLAIMERREADER_H

#include "Finding.h"

#include <QByteArray>

// A disclaimer's text or HTML: its encoding, size and lines, and whether HTML tags balance.
ContentReport readDisclaimer(const QByteArray &data, qint64 fileSize, bool html);

#endif

#ifndef PPDREADER_H
#define PPDREADER_H

#include "Finding.h"

#include <QByteArray>

// A printer driver's PPD file: its header, model and manufacturer, and the lines that make the
// print system run a program or build a command line of the file's choosing.
ContentReport readPpd(const QByteArray &data);

#endif

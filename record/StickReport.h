#ifndef STICKREPORT_H
#define STICKREPORT_H

#include <QByteArray>
#include <QString>

namespace record {

// What became of the report on the stick.
struct StickReportResult
{
    bool asked = false; // the stick's top holds a real folder for reports
    QString file;       // the file written, relative to the mount directory; empty if none
    QString error;      // why the stick asked and got no report
};

// Writes content as a new file into the report folder at the top of the stick mounted at
// mountDir, if it holds one that is a real folder (a link is not followed, so nothing is ever
// written through one). The file is named baseName + ".json", or baseName-2.json and so on
// when that exists: it is created new and never replaces or follows anything. A write that
// fails (a full or read-only stick) leaves no file behind.
StickReportResult writeStickReport(const QString &mountDir, const QString &baseName,
                                   const QByteArray &content);

} // namespace record

#endif

#ifndef SYSTEMLOG_H
#define SYSTEMLOG_H

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>

namespace record {

// The kinds of entries an installation writes; each has its own fixed MESSAGE_ID.
enum class Event {
    Started,          // before the first step (a firmware update may restart the client)
    Ended,            // after the verification: the outcome
    StepFailed,       // one per failed step
    FileSkipped,      // one per picked file the safety rules refused or skipped
    ReportNotWritten, // the stick asked for a report and did not get it
};

// The MESSAGE_ID of a kind of entry, as 32 hexadecimal digits (for journalctl MESSAGE_ID=...).
QByteArray messageId(Event event);

struct LogEntry
{
    Event event = Event::Started;
    int priority = 6;                         // syslog's levels: 6 info, 4 warning, 3 error
    QString message;                          // the readable line
    QList<QPair<QByteArray, QString>> fields; // the entry's own fields, names in capitals
};

// The identifier the entries carry (SYSLOG_IDENTIFIER, and syslog's tag).
extern const char systemLogIdentifier[];

// Sends one entry to the system journal; where no journal runs, one line to syslog(3): the
// message, then each field as NAME="value".
void sendToSystemLog(const LogEntry &entry);

} // namespace record

#endif

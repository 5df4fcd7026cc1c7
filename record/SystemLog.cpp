#include "SystemLog.h"

#define SD_JOURNAL_SUPPRESS_LOCATION
#include <systemd/sd-journal.h>

#include <sys/stat.h>
#include <sys/uio.h>
#include <syslog.h>

#include <vector>

namespace record {

const char systemLogIdentifier[] = "usb-installer";

QByteArray messageId(Event event)
{
    // Made once with systemd-id128 new; never change them: administrators filter by them.
    switch (event) {
    case Event::Started:
        return QByteArrayLiteral("f3d6bb11b1d84b3a813675c225619a5f");
    case Event::Ended:
        return QByteArrayLiteral("0db9692385e2493fb1e936ffce72c4b2");
    case Event::StepFailed:
        return QByteArrayLiteral("0b9acea9db044e9d868e1381040976d9");
    case Event::FileSkipped:
        return QByteArrayLiteral("5026c78545d04b67a8cfa5b15b5cd3f7");
    case Event::ReportNotWritten:
        return QByteArrayLiteral("532447ef2436456696b2cdeace3429df");
    }
    return {};
}

namespace {

// A value for the syslog line: in double quotes, with \" \\ \n and \xNN for control bytes, so
// that one entry stays one line and its fields stay apart.
QByteArray quoted(const QByteArray &value)
{
    QByteArray out = "\"";
    for (const char c : value) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (c == '\n') {
            out += "\\n";
        } else if (byte < 0x20 || byte == 0x7f) {
            out += "\\x" + QByteArray::number(byte, 16).rightJustified(2, '0');
        } else {
            out += c;
        }
    }
    return out + '"';
}

void sendToSyslog(const LogEntry &entry, const QList<QPair<QByteArray, QByteArray>> &fields)
{
    QByteArray line = entry.message.toUtf8().replace('\n', "\\n");
    for (const auto &field : fields)
        line += ' ' + field.first + '=' + quoted(field.second);
    openlog(systemLogIdentifier, LOG_PID, LOG_USER);
    syslog(entry.priority, "%s", line.constData());
    closelog();
}

bool journalRuns()
{
    struct stat socket;
    return ::stat("/run/systemd/journal/socket", &socket) == 0 && S_ISSOCK(socket.st_mode);
}

} // namespace

void sendToSystemLog(const LogEntry &entry)
{
    QList<QPair<QByteArray, QByteArray>> fields{{"MESSAGE_ID", messageId(entry.event)}};
    for (const auto &field : entry.fields)
        fields.append({field.first, field.second.toUtf8()});
    std::vector<QByteArray> items{"MESSAGE=" + entry.message.toUtf8(),
                                  "PRIORITY=" + QByteArray::number(entry.priority),
                                  QByteArray("SYSLOG_IDENTIFIER=") + systemLogIdentifier};
    for (const auto &field : qAsConst(fields))
        items.push_back(field.first + '=' + field.second);
    std::vector<iovec> iov;
    iov.reserve(items.size());
    for (QByteArray &item : items)
        iov.push_back({item.data(), size_t(item.size())});
    // The library writes a value holding a line break in the journal's binary form itself. It
    // reports success when the journal's socket is missing, so that is looked at first.
    if (!journalRuns() || sd_journal_sendv(iov.data(), int(iov.size())) < 0)
        sendToSyslog(entry, fields);
}

} // namespace record

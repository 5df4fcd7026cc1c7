#include "RdpReader.h"

#include "TextLines.h"

#include <QHash>
#include <QStringList>

namespace {

struct Redirection
{
    const char *setting;
    const char *what;
};

const Redirection redirections[] = {
    {"redirectdrives", "drives"},         {"redirectclipboard", "the clipboard"},
    {"redirectprinters", "printers"},     {"redirectsmartcards", "smart cards"},
    {"redirectcomports", "serial ports"}, {"redirectposdevices", "point-of-service devices"},
};

} // namespace

ContentReport readRdpFile(const QByteArray &data)
{
    ContentReport report;
    report.kind = QStringLiteral("rdp");
    QString encoding;
    const QString text = decodeText(data, &encoding);
    QHash<QString, QString> settings; // "name:type" -> value, the last one counts
    QHash<QString, int> lineOf;
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (int i = 0; i < lines.size(); ++i) {
        const QString line = lines.at(i).trimmed();
        const int first = line.indexOf(QLatin1Char(':'));
        const int second = line.indexOf(QLatin1Char(':'), first + 1);
        if (first <= 0 || second != first + 2)
            continue;
        const QString key = line.left(second).toLower();
        settings.insert(key, line.mid(second + 1));
        lineOf.insert(key, i + 1);
    }
    if (settings.isEmpty()) {
        report.summary = QStringLiteral("not an RDP file");
        report.error(QStringLiteral("rdp-not-rdp"),
                     QStringLiteral("The file holds no \"name:type:value\" setting."));
        return report;
    }
    const QString server = settings.value(QStringLiteral("full address:s"));
    const QString user = settings.value(QStringLiteral("username:s"));
    report.summary =
        QStringLiteral("RDP file (%1): server %2, user %3")
            .arg(encoding, server.isEmpty() ? QStringLiteral("not named") : quoted(server),
                 user.isEmpty() ? QStringLiteral("not named") : quoted(user));
    if (server.isEmpty())
        report.warning(QStringLiteral("rdp-no-server"),
                       QStringLiteral("The file names no server (\"full address\")."));
    QStringList redirected;
    const QString drives = settings.value(QStringLiteral("drivestoredirect:s"));
    if (!drives.isEmpty())
        redirected.append(QStringLiteral("drives (%1)").arg(quoted(drives)));
    else if (settings.value(QStringLiteral("redirectdrives:i")) == QLatin1String("1"))
        redirected.append(QStringLiteral("drives"));
    for (const Redirection &redirection : redirections) {
        if (settings.value(QString::fromLatin1(redirection.setting) + QStringLiteral(":i")) ==
            QLatin1String("1"))
            redirected.append(QString::fromLatin1(redirection.what));
    }
    if (!redirected.isEmpty())
        report.info(QStringLiteral("rdp-redirects"),
                    QStringLiteral("Redirects %1 to the server.")
                        .arg(redirected.join(QStringLiteral(", "))));
    for (const QString &key : {QStringLiteral("password 51:b"), QStringLiteral("password:s")}) {
        if (!settings.value(key).isEmpty())
            report.warning(QStringLiteral("rdp-password"),
                           QStringLiteral("Line %1: a stored password (\"%2\").")
                               .arg(lineOf.value(key))
                               .arg(key.section(QLatin1Char(':'), 0, 0)));
    }
    const QString shell = settings.value(QStringLiteral("alternate shell:s"));
    if (!shell.isEmpty())
        report.warning(QStringLiteral("rdp-alternate-shell"),
                       QStringLiteral("Line %1: \"alternate shell\" starts %2 instead of the "
                                      "desktop.")
                           .arg(lineOf.value(QStringLiteral("alternate shell:s")))
                           .arg(quoted(shell)));
    return report;
}

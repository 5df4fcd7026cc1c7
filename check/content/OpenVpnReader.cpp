#include "OpenVpnReader.h"

#include "TextLines.h"

#include <QHash>
#include <QSet>
#include <QStringList>

namespace {

const QSet<QString> &runsPrograms()
{
    static const QSet<QString> names{
        QStringLiteral("up"),
        QStringLiteral("down"),
        QStringLiteral("route-up"),
        QStringLiteral("route-pre-down"),
        QStringLiteral("ipchange"),
        QStringLiteral("tls-verify"),
        QStringLiteral("client-connect"),
        QStringLiteral("client-disconnect"),
        QStringLiteral("learn-address"),
        QStringLiteral("auth-user-pass-verify"),
        QStringLiteral("plugin"),
        QStringLiteral("iproute"),
        QStringLiteral("dns-updown"),
    };
    return names;
}

const QSet<QString> &writesFiles()
{
    static const QSet<QString> names{QStringLiteral("log"), QStringLiteral("log-append"),
                                     QStringLiteral("status"), QStringLiteral("writepid")};
    return names;
}

// Directives whose first argument names a file the profile needs; each may be given inline.
const QSet<QString> &namesFiles()
{
    static const QSet<QString> names{
        QStringLiteral("ca"),          QStringLiteral("cert"),
        QStringLiteral("key"),         QStringLiteral("tls-auth"),
        QStringLiteral("tls-crypt"),   QStringLiteral("tls-crypt-v2"),
        QStringLiteral("pkcs12"),      QStringLiteral("secret"),
        QStringLiteral("dh"),          QStringLiteral("crl-verify"),
        QStringLiteral("extra-certs"), QStringLiteral("auth-user-pass"),
        QStringLiteral("config"),
    };
    return names;
}

// The words of one line: quotes group, a backslash escapes the next character (not inside
// single quotes), and '#' or ';' where a word would start ends the line.
QStringList words(const QString &line)
{
    QStringList result;
    QString word;
    enum { Between, Bare, Double, Single } state = Between;
    bool escaped = false;
    for (const QChar c : line) {
        if (escaped) {
            word += c;
            escaped = false;
            if (state == Between)
                state = Bare;
            continue;
        }
        if (c == QLatin1Char('\\') && state != Single) {
            escaped = true;
            continue;
        }
        switch (state) {
        case Between:
            if (c.isSpace())
                break;
            if (c == QLatin1Char('#') || c == QLatin1Char(';'))
                return result;
            if (c == QLatin1Char('"'))
                state = Double;
            else if (c == QLatin1Char('\''))
                state = Single;
            else {
                word += c;
                state = Bare;
            }
            break;
        case Bare:
        case Double:
        case Single: {
            const bool ends = state == Bare     ? c.isSpace()
                              : state == Double ? c == QLatin1Char('"')
                                                : c == QLatin1Char('\'');
            if (!ends) {
                word += c;
                break;
            }
            result.append(word);
            word.clear();
            state = Between;
            break;
        }
        }
    }
    if (state != Between)
        result.append(word);
    return result;
}

struct Directive
{
    int line;
    QStringList words;
    QString text; // the line as written
};

} // namespace

ContentReport readOpenVpnProfile(const QByteArray &data)
{
    ContentReport report;
    report.kind = QStringLiteral("openvpn");
    if (data.contains('\0')) {
        report.summary = QStringLiteral("not a text file");
        report.error(QStringLiteral("ovpn-not-text"),
                     QStringLiteral("The file holds NUL bytes: it is no OpenVPN profile."));
        return report;
    }
    const QStringList lines = QString::fromUtf8(data).split(QLatin1Char('\n'));
    QList<Directive> directives;
    QSet<QString> inlined;
    QString openBlock;
    int blockLine = 0;
    for (int i = 0; i < lines.size(); ++i) {
        const QString line = lines.at(i).trimmed();
        if (!openBlock.isEmpty()) {
            if (line == QStringLiteral("</%1>").arg(openBlock)) {
                inlined.insert(openBlock);
                openBlock.clear();
            }
            continue;
        }
        if (line.startsWith(QLatin1Char('<')) && line.endsWith(QLatin1Char('>')) &&
            !line.startsWith(QLatin1String("</"))) {
            openBlock = line.mid(1, line.size() - 2);
            blockLine = i + 1;
            continue;
        }
        QStringList parts = words(line);
        if (parts.isEmpty())
            continue;
        if (parts.first().startsWith(QLatin1String("--")))
            parts.first().remove(0, 2);
        directives.append({i + 1, parts, lines.at(i).trimmed()});
    }
    if (!openBlock.isEmpty())
        report.error(QStringLiteral("ovpn-unclosed-block"),
                     QStringLiteral("Line %1: the inline block <%2> is never closed.")
                         .arg(blockLine)
                         .arg(quoted(openBlock)));

    QHash<QString, QString> shown; // remote, proto, dev: the first of each
    for (const Directive &directive : qAsConst(directives)) {
        const QString &name = directive.words.first();
        const QString where =
            QStringLiteral("Line %1 (%2)").arg(directive.line).arg(quoted(directive.text));
        const QString argument = directive.words.value(1);
        if (name == QLatin1String("remote") || name == QLatin1String("proto") ||
            name == QLatin1String("dev")) {
            if (!shown.contains(name))
                shown.insert(name, directive.words.mid(1).join(QLatin1Char(' ')));
        } else if (runsPrograms().contains(name)) {
            report.warning(QStringLiteral("ovpn-runs-program"),
                           where + QStringLiteral(" runs a program as root on the client."));
        } else if (name == QLatin1String("script-security") && argument.toInt() >= 2) {
            report.warning(QStringLiteral("ovpn-script-security"),
                           where + QStringLiteral(" lets the profile run scripts."));
        } else if (writesFiles().contains(name)) {
            report.warning(QStringLiteral("ovpn-writes-file"),
                           where + QStringLiteral(" writes a file as root on the client."));
        } else if (namesFiles().contains(name) && !inlined.contains(name) && !argument.isEmpty() &&
                   argument != QLatin1String("[inline]") &&
                   !(name == QLatin1String("dh") && argument == QLatin1String("none"))) {
            if (argument.startsWith(QLatin1Char('/')))
                report.info(QStringLiteral("ovpn-absolute-file"),
                            where + QStringLiteral(" names a file that must exist on the "
                                                   "client."));
            else
                report.error(QStringLiteral("ovpn-missing-file"),
                             where +
                                 QStringLiteral(" names a file by a relative path and does not "
                                                "inline it: the client will not find it beside the "
                                                "installed profile."));
        }
    }
    QStringList summary;
    for (const QString &name :
         {QStringLiteral("remote"), QStringLiteral("proto"), QStringLiteral("dev")}) {
        if (shown.contains(name))
            summary.append(name + QLatin1Char(' ') + quoted(shown.value(name)));
    }
    if (!shown.contains(QStringLiteral("remote")))
        report.warning(QStringLiteral("ovpn-no-remote"),
                       QStringLiteral("The profile names no server (no \"remote\" line)."));
    report.summary =
        QStringLiteral("OpenVPN profile") +
        (summary.isEmpty() ? QString() : QStringLiteral(": ") + summary.join(QStringLiteral(", ")));
    return report;
}

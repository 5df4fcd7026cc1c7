#include "DisclaimerReader.h"

#include "TextLines.h"

#include <QSet>
#include <QStringList>
#include <algorithm>

namespace {

// Elements that have no end tag, or whose end tag HTML lets the writer leave out.
bool balanceExempt(const QString &tag)
{
    static const QSet<QString> exempt{
        QStringLiteral("area"),   QStringLiteral("base"),     QStringLiteral("br"),
        QStringLiteral("col"),    QStringLiteral("embed"),    QStringLiteral("hr"),
        QStringLiteral("img"),    QStringLiteral("input"),    QStringLiteral("link"),
        QStringLiteral("meta"),   QStringLiteral("param"),    QStringLiteral("source"),
        QStringLiteral("track"),  QStringLiteral("wbr"),      QStringLiteral("p"),
        QStringLiteral("li"),     QStringLiteral("dt"),       QStringLiteral("dd"),
        QStringLiteral("tr"),     QStringLiteral("td"),       QStringLiteral("th"),
        QStringLiteral("option"), QStringLiteral("thead"),    QStringLiteral("tbody"),
        QStringLiteral("tfoot"),  QStringLiteral("html"),     QStringLiteral("head"),
        QStringLiteral("body"),   QStringLiteral("colgroup"),
    };
    return exempt.contains(tag);
}

// The first tag that does not balance, described; empty when all do. One pass over the text:
// an unterminated comment or tag ends it.
QString unbalancedTag(const QString &text)
{
    QList<QPair<QString, int>> open; // tag, line
    int line = 1, counted = 0;
    for (int at = text.indexOf(QLatin1Char('<')); at >= 0;
         at = text.indexOf(QLatin1Char('<'), at)) {
        line += text.midRef(counted, at - counted).count(QLatin1Char('\n'));
        counted = at;
        if (text.midRef(at, 4) == QLatin1String("<!--")) {
            at = text.indexOf(QLatin1String("-->"), at + 4);
            if (at < 0)
                break;
            continue;
        }
        const int end = text.indexOf(QLatin1Char('>'), at);
        if (end < 0)
            break;
        const bool closing = text.midRef(at + 1, 1) == QLatin1String("/");
        int nameEnd = at + (closing ? 2 : 1);
        while (nameEnd < end && text.at(nameEnd).isLetterOrNumber() &&
               text.at(nameEnd).unicode() < 128)
            ++nameEnd;
        const QString tag =
            text.mid(at + (closing ? 2 : 1), nameEnd - at - (closing ? 2 : 1)).toLower();
        const bool selfClosing = text.at(end - 1) == QLatin1Char('/');
        at = end;
        if (tag.isEmpty() || !tag.at(0).isLetter() || balanceExempt(tag) || selfClosing)
            continue;
        if (!closing) {
            open.append({tag, line});
        } else if (open.isEmpty()) {
            return QStringLiteral("line %1: </%2> closes nothing").arg(line).arg(tag);
        } else if (open.last().first != tag) {
            return QStringLiteral("line %1: </%2> while <%3> of line %4 is open")
                .arg(line)
                .arg(tag, open.last().first)
                .arg(open.last().second);
        } else {
            open.removeLast();
        }
    }
    if (!open.isEmpty())
        return QStringLiteral("line %1: <%2> is never closed")
            .arg(open.last().second)
            .arg(open.last().first);
    return {};
}

} // namespace

ContentReport readDisclaimer(const QByteArray &data, qint64 fileSize, bool html)
{
    ContentReport report;
    report.kind = QStringLiteral("disclaimer");
    if (data.contains('\0') && !data.startsWith("\xFF\xFE") && !data.startsWith("\xFE\xFF")) {
        report.summary = QStringLiteral("not text");
        report.error(QStringLiteral("disclaimer-not-text"),
                     QStringLiteral("The file holds NUL bytes: it is not text."));
        return report;
    }
    QString encoding;
    const QString text = decodeText(data, &encoding);
    const int lines = text.count(QLatin1Char('\n')) +
                      (text.isEmpty() || text.endsWith(QLatin1Char('\n')) ? 0 : 1);
    const bool eightBit = encoding == QLatin1String("ISO-8859-1");
    if (eightBit && std::any_of(data.begin(), data.end(), [](char c) {
            return static_cast<unsigned char>(c) >= 0x80 && static_cast<unsigned char>(c) < 0xA0;
        }))
        encoding = QStringLiteral("Windows-1252");
    report.summary =
        QStringLiteral("%1 in %2, %3 bytes, %4")
            .arg(html ? QStringLiteral("HTML") : QStringLiteral("text"), encoding)
            .arg(fileSize)
            .arg(lines == 1 ? QStringLiteral("1 line") : QStringLiteral("%1 lines").arg(lines));
    if (text.trimmed().isEmpty())
        report.warning(QStringLiteral("disclaimer-empty"),
                       QStringLiteral("The disclaimer holds no text."));
    if (eightBit)
        report.info(QStringLiteral("disclaimer-8bit"),
                    QStringLiteral("The text is not UTF-8 but 8-bit (%1).").arg(encoding));
    if (html) {
        const QString unbalanced = unbalancedTag(text);
        if (!unbalanced.isEmpty())
            report.warning(
                QStringLiteral("disclaimer-html-unbalanced"),
                QStringLiteral("The HTML's tags do not balance: %1.").arg(quoted(unbalanced)));
    }
    return report;
}

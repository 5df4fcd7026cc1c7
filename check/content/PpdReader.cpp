#include "PpdReader.h"

#include "TextLines.h"

#include <QStringList>

namespace {

// One main keyword statement: "*Keyword Option/Text: value", the value possibly a quoted string
// over several lines.
struct Statement
{
    int line = 0;
    QString keyword; // without the '*'
    QString value;   // without the quotes
};

QString unquote(QString value)
{
    value = value.trimmed();
    if (value.startsWith(QLatin1Char('"'))) {
        value.remove(0, 1);
        const int end = value.indexOf(QLatin1Char('"'));
        if (end >= 0)
            value.truncate(end);
    }
    return value;
}

// Statements in file order. Lines that are no statement (comments "*%", blank lines, stray
// text) are skipped; a quoted value runs to its closing quote.
QList<Statement> statements(const QString &text)
{
    QList<Statement> found;
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (int i = 0; i < lines.size(); ++i) {
        QString line = lines.at(i);
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
        if (!line.startsWith(QLatin1Char('*')) || line.startsWith(QLatin1String("*%")))
            continue;
        const int colon = line.indexOf(QLatin1Char(':'));
        Statement statement;
        statement.line = i + 1;
        const QString head = colon < 0 ? line.mid(1) : line.mid(1, colon - 1);
        statement.keyword = head.section(QLatin1Char(' '), 0, 0).trimmed();
        QString value = colon < 0 ? QString() : line.mid(colon + 1).trimmed();
        if (value.startsWith(QLatin1Char('"')) && value.count(QLatin1Char('"')) == 1) {
            while (++i < lines.size()) {
                value += QLatin1Char('\n') + lines.at(i);
                if (lines.at(i).contains(QLatin1Char('"')))
                    break;
            }
        }
        statement.value = unquote(value);
        found.append(statement);
    }
    return found;
}

bool buildsCommandLine(const QString &keyword)
{
    return keyword.startsWith(QLatin1String("FoomaticRIPCommandLine")) ||
           keyword == QLatin1String("FoomaticRIPOptionSetting") ||
           keyword == QLatin1String("FoomaticRIPPostPipe");
}

bool isFilter(const QString &keyword)
{
    return keyword == QLatin1String("cupsFilter") || keyword == QLatin1String("cupsFilter2") ||
           keyword == QLatin1String("cupsPreFilter");
}

} // namespace

ContentReport readPpd(const QByteArray &data)
{
    ContentReport report;
    report.kind = QStringLiteral("ppd");
    QString text = QString::fromUtf8(data);
    if (text.startsWith(QChar(0xFEFF)))
        text.remove(0, 1);
    if (!text.startsWith(QLatin1String("*PPD-Adobe:"))) {
        report.summary = QStringLiteral("not a PPD file");
        report.error(
            QStringLiteral("ppd-not-ppd"),
            QStringLiteral("The file does not start with the PPD header \"*PPD-Adobe:\"."));
        return report;
    }
    QString version, manufacturer, model;
    for (const Statement &statement : statements(text)) {
        const QString &key = statement.keyword;
        const QString line = quoted(QStringLiteral("*%1: \"%2\"").arg(key, statement.value));
        const QString where = QStringLiteral("Line %1 (%2)").arg(statement.line).arg(line);
        if (key == QLatin1String("PPD-Adobe") && version.isEmpty())
            version = statement.value;
        else if (key == QLatin1String("Manufacturer") && manufacturer.isEmpty())
            manufacturer = statement.value;
        else if ((key == QLatin1String("ModelName") || key == QLatin1String("NickName")) &&
                 model.isEmpty())
            model = statement.value;
        else if (buildsCommandLine(key))
            report.warning(QStringLiteral("ppd-command-line"),
                           where + QStringLiteral(" builds a command line that the print "
                                                  "system runs."));
        else if (isFilter(key)) {
            const QString program = statement.value.simplified().section(QLatin1Char(' '), -1);
            if (program.startsWith(QLatin1Char('/')))
                report.warning(QStringLiteral("ppd-filter-program"),
                               where + QStringLiteral(" runs a program of the file's "
                                                      "own choosing."));
            else
                report.info(
                    QStringLiteral("ppd-filter"),
                    where + QStringLiteral(" sends jobs through a filter of the print system."));
        }
    }
    report.summary =
        QStringLiteral("PPD %1: %2 by %3")
            .arg(quoted(version), model.isEmpty() ? QStringLiteral("no model name") : quoted(model),
                 manufacturer.isEmpty() ? QStringLiteral("no manufacturer") : quoted(manufacturer));
    if (model.isEmpty())
        report.warning(QStringLiteral("ppd-no-model"),
                       QStringLiteral("The file names no model (*ModelName or *NickName)."));
    return report;
}

#include "TextLines.h"

#include <QTextCodec>

namespace {
const int longest = 120;
}

QString printable(const QString &text)
{
    QString result;
    for (const QChar c : text) {
        if (c == QLatin1Char('\n'))
            result += QStringLiteral("\\n");
        else if (c == QLatin1Char('\r'))
            result += QStringLiteral("\\r");
        else if (c.category() == QChar::Other_Control)
            result += QStringLiteral("\\x%1").arg(c.unicode(), 2, 16, QLatin1Char('0'));
        else if (c.category() == QChar::Other_Format) // shown, not obeyed: "\u202e"
            result += QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
        else
            result += c;
    }
    return result;
}

QString quoted(const QString &text)
{
    const QString shown = printable(text.left(longest + 1));
    return shown.size() > longest ? shown.left(longest) + QStringLiteral("...") : shown;
}

QString decodeText(const QByteArray &data, QString *encoding)
{
    const char *name = "UTF-8";
    if (data.startsWith("\xFF\xFE"))
        name = "UTF-16LE";
    else if (data.startsWith("\xFE\xFF"))
        name = "UTF-16BE";
    QTextCodec *codec = QTextCodec::codecForName(name);
    QTextCodec::ConverterState state(QTextCodec::DefaultConversion);
    QString text = codec->toUnicode(data.constData(), data.size(), &state);
    if (state.invalidChars > 0 && qstrcmp(name, "UTF-8") == 0) {
        name = "ISO-8859-1";
        text = QString::fromLatin1(data);
    }
    if (text.startsWith(QChar(0xFEFF)))
        text.remove(0, 1);
    if (encoding)
        *encoding = QString::fromLatin1(name);
    return text;
}

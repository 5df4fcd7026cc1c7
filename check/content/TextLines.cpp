#include "TextLines.h"

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

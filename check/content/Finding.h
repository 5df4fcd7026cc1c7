#ifndef FINDING_H
#define FINDING_H

#include <QList>
#include <QString>
#include <QStringList>

// One thing a content reader found in a file.
struct Finding
{
    enum class Severity { Error, Warning, Info };
    Severity severity = Severity::Info;
    QString code; // stable, for scripts ("cert-expired")
    QString text; // one sentence for the administrator
    // The type keys the finding concerns; empty when it concerns every type the file is
    // offered as.
    QStringList types;
};

// What a file's content is, and what was found in it.
struct ContentReport
{
    QString kind;    // "certificate", "picture", ...; empty when the content was not read
    QString summary; // what the file is, in one line
    QList<Finding> findings;

    void error(const QString &code, const QString &text)
    {
        add(Finding::Severity::Error, code, text);
    }
    void warning(const QString &code, const QString &text)
    {
        add(Finding::Severity::Warning, code, text);
    }
    void info(const QString &code, const QString &text)
    {
        add(Finding::Severity::Info, code, text);
    }
    void add(Finding::Severity severity, const QString &code, const QString &text)
    {
        findings.append({severity, code, text, {}});
    }
    int count(Finding::Severity severity) const
    {
        int n = 0;
        for (const Finding &finding : findings)
            n += finding.severity == severity ? 1 : 0;
        return n;
    }
};

// "error", "warning" or "info".
inline QString severityName(Finding::Severity severity)
{
    switch (severity) {
    case Finding::Severity::Error:
        return QStringLiteral("error");
    case Finding::Severity::Warning:
        return QStringLiteral("warning");
    case Finding::Severity::Info:
        break;
    }
    return QStringLiteral("info");
}

#endif

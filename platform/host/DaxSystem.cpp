#include "DaxSystem.h"

#include <QProcess>

int DaxSystem::execShell(const QString &commandLine)
{
    return QProcess::execute(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), commandLine});
}

#include "SimClient.h"

#include "DaxProperties.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QtGlobal>

#include <cstdio>
#include <cstdlib>

namespace simclient {

namespace {

QStringList lines(const QByteArray &envName)
{
    const QString path = QString::fromLocal8Bit(qgetenv(envName.constData()));
    QStringList result;
    QFile file(path);
    if (path.isEmpty() || !file.open(QIODevice::ReadOnly))
        return result;
    const QList<QByteArray> raw = file.readAll().split('\n');
    for (const QByteArray &line : raw) {
        if (!line.isEmpty())
            result.append(QString::fromUtf8(line));
    }
    return result;
}

void truncate(const QByteArray &envName)
{
    const QString path = QString::fromLocal8Bit(qgetenv(envName.constData()));
    if (path.isEmpty())
        return;
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        file.close();
}

} // namespace

void requireSim()
{
    if (qgetenv("USBI_SIM") != "1") {
        std::fprintf(stderr, "This test changes the client's system; run it inside sim/run.\n");
        std::exit(2);
    }
}

QStringList shellLog()
{
    return lines("DAX_SHELL_LOG");
}

QStringList calls()
{
    return lines("SIM_CALL_LOG");
}

QStringList calls(const QString &tool)
{
    QStringList result;
    const QStringList all = calls();
    for (const QString &line : all) {
        if (line == tool || line.startsWith(tool + QLatin1Char(' ')))
            result.append(line);
    }
    return result;
}

void clearLogs()
{
    truncate("DAX_SHELL_LOG");
    truncate("SIM_CALL_LOG");
}

QStringList changedPaths()
{
    const QString changes = QStringLiteral("/var/lib/sim-changes");
    QStringList paths;
    QDirIterator it(changes, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext())
        paths.append(it.next().mid(changes.size()));
    return paths;
}

QString makeStick(const QStringList &files, const QList<QByteArray> &contents)
{
    static int counter = 0;
    QString dir = QStringLiteral("/tmp/sticks/%1").arg(++counter);
    QDir().mkpath(dir);
    for (int i = 0; i < files.size(); ++i) {
        QFile file(dir + QLatin1Char('/') + files.at(i));
        if (file.open(QIODevice::WriteOnly))
            file.write(i < contents.size() ? contents.at(i) : files.at(i).toUtf8());
    }
    return dir;
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString storeValue(const QString &storePath, const QString &key, const QString &defaultValue)
{
    DaxProperties store(storePath, QString(), false);
    if (!store.Load())
        return defaultValue;
    return store.GetString(key, defaultValue);
}

QStringList printerDatabaseDrivers()
{
    QStringList names;
    const QList<QByteArray> rows =
        readFile(QStringLiteral("/tmp/config/files/printdrivers.db")).split('\n');
    for (const QByteArray &row : rows) {
        if (!row.isEmpty())
            names.append(QString::fromUtf8(row.split('\t').first()));
    }
    return names;
}

} // namespace simclient

// usb-stick-check: what a stick would do to a client, told before anyone plugs it in. It runs
// the program's own discovery and installers against a client that only records.

#include "ContentCheck.h"
#include "JsonReport.h"
#include "StickCheck.h"
#include "TextReport.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>
#include <QLoggingCategory>

#include <cstdio>

namespace {

const char *const usage =
    "usage: usb-stick-check MOUNT_DIR [--legacy] [--marker] [--modality NAME] [--arch ARCH] "
    "[--date DATE] [--no-content] [--json]";

int fail(const QString &why)
{
    std::fprintf(stderr, "usb-stick-check: %s\n", qUtf8Printable(printable(why)));
    return 2;
}

int usageError(QString why)
{
    if (why.endsWith(QLatin1Char('.')))
        why.chop(1);
    return fail(why + QStringLiteral("; ") + QLatin1String(usage));
}

QString unreadable(const QString &dir)
{
    const QFileInfo info(dir);
    if (!info.exists())
        return QStringLiteral("cannot read %1: no such directory").arg(dir);
    if (!info.isDir())
        return QStringLiteral("cannot read %1: not a directory").arg(dir);
    if (!info.isReadable() || !info.isExecutable())
        return QStringLiteral("cannot read %1: permission denied").arg(dir);
    return {};
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("usb-stick-check"));
    QCoreApplication::setApplicationVersion(QStringLiteral(USBINSTALLER_VERSION));
    // The discovery's and installers' debug lines are for the program's log; here the report
    // says the same.
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Tells what a USB stick mounted at MOUNT_DIR would offer and install on a "
                       "thin client. Reads the stick; changes nothing."));
    const QCommandLineOption legacy(
        QStringLiteral("legacy"),
        QStringLiteral("The client keeps its settings in the legacy registry."));
    const QCommandLineOption marker(
        QStringLiteral("marker"),
        QStringLiteral("The client is the OS variant with the marker file."));
    const QCommandLineOption modality(QStringLiteral("modality"),
                                      QStringLiteral("The client's modality file holds NAME."),
                                      QStringLiteral("NAME"));
    const QCommandLineOption json(QStringLiteral("json"),
                                  QStringLiteral("Print one JSON document."));
    const QCommandLineOption arch(
        QStringLiteral("arch"),
        QStringLiteral("The client's Debian architecture, for packages (default amd64)."),
        QStringLiteral("ARCH"), QStringLiteral("amd64"));
    const QCommandLineOption date(
        QStringLiteral("date"),
        QStringLiteral("Judge certificates' validity on DATE (YYYY-MM-DD, UTC) instead of today."),
        QStringLiteral("DATE"));
    const QCommandLineOption noContent(QStringLiteral("no-content"),
                                       QStringLiteral("Do not read the offered files' contents."));
    parser.addOptions({legacy, marker, modality, arch, date, noContent, json});
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("MOUNT_DIR"),
                                 QStringLiteral("Where the stick is mounted."));

    if (!parser.parse(QCoreApplication::arguments()))
        return usageError(parser.errorText());
    if (parser.isSet(QStringLiteral("help")))
        parser.showHelp(0);
    if (parser.isSet(QStringLiteral("version")))
        parser.showVersion();
    if (parser.positionalArguments().size() != 1)
        return usageError(QStringLiteral("expected one mount directory"));
    if (parser.value(modality).contains(QLatin1Char('\n')))
        return usageError(QStringLiteral("a modality is one line"));

    ContentOptions contentOptions;
    contentOptions.arch = parser.value(arch);
    if (parser.isSet(date)) {
        const QDate day = QDate::fromString(parser.value(date), Qt::ISODate);
        contentOptions.now = QDateTime(day, QTime(0, 0), Qt::UTC);
        if (!day.isValid())
            return usageError(QStringLiteral("a date is written YYYY-MM-DD"));
    }

    // A directory the program refuses outright is reported before it is looked at.
    const QString dir = parser.positionalArguments().first();
    const QString why = refusedMountDirectory(dir) ? QString() : unreadable(dir);
    if (!why.isEmpty())
        return fail(why);

    ClientState client;
    client.legacyMode = parser.isSet(legacy);
    client.osVariantMarker = parser.isSet(marker);
    if (parser.isSet(modality))
        client.modality = parser.value(modality) + QLatin1Char('\n');

    StickCheck check = checkStick(dir, client);
    if (!parser.isSet(noContent)) {
        QList<ContentJob> jobs;
        for (CheckedEntry &entry : check.entries) {
            if (entry.reason == NotOffered::No)
                jobs.append({entry.name, entry.types, &entry.content});
        }
        readContents(dir, jobs, contentOptions);
    }
    const QByteArray report = parser.isSet(json) ? jsonReport(check).toJson(QJsonDocument::Indented)
                                                 : textReport(check).toUtf8();
    std::fwrite(report.constData(), 1, static_cast<size_t>(report.size()), stdout);
    if (check.refusedDirectory) {
        std::fprintf(stderr, "usb-stick-check: the program refuses \"%s\": %s\n",
                     qUtf8Printable(printable(dir)),
                     qUtf8Printable(printable(check.refusedDirectory->why)));
        return 3;
    }
    if (check.offeredCount() == 0) {
        std::fprintf(stderr, "usb-stick-check: nothing on %s would be offered\n",
                     qUtf8Printable(printable(dir)));
        return 3;
    }
    if (const int errors = check.contentErrorCount()) {
        std::fprintf(stderr, "usb-stick-check: %d offered %s errors in %s content\n", errors,
                     errors == 1 ? "file has" : "files have", errors == 1 ? "its" : "their");
        return 4;
    }
    return 0;
}

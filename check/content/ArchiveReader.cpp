#include "ArchiveReader.h"

#include "TextLines.h"

#include <QHash>
#include <QLocale>
#include <QStringList>

#include <archive.h>
#include <archive_entry.h>

#include <memory>

namespace {

// Reading stops there: a stick holds no firmware of more entries, and a package's control part
// is a few kilobytes.
const qint64 maximumEntries = 1'000'000;
// Reading an archive decompresses all of it: stop before an entry that would take it beyond
// this, so that a small file that unpacks to a huge one cannot hold the check for long.
const qint64 maximumUnpacked = qint64(8) * 1024 * 1024 * 1024;
const qint64 maximumControlSize = qint64(16) * 1024 * 1024;
const size_t blockSize = size_t(64) * 1024;

using Archive = std::unique_ptr<archive, decltype(&archive_read_free)>;

Archive newReader()
{
    return Archive(archive_read_new(), &archive_read_free);
}

QString archiveError(archive *a)
{
    const char *why = archive_error_string(a);
    return why ? quoted(QString::fromLocal8Bit(why)) : QStringLiteral("unknown error");
}

bool leavesFolder(const QString &path)
{
    return path.startsWith(QLatin1Char('/')) ||
           path.split(QLatin1Char('/')).contains(QStringLiteral(".."));
}

QString bytes(qint64 n)
{
    return QLocale::c().formattedDataSize(n, 1, QLocale::DataSizeTraditionalFormat);
}

// The control file's fields ("Package", ...), continuation lines left out.
QHash<QString, QString> controlFields(const QByteArray &control)
{
    QHash<QString, QString> fields;
    for (const QByteArray &line : control.split('\n')) {
        const int colon = line.indexOf(':');
        if (colon > 0 && line.at(0) != ' ' && line.at(0) != '\t')
            fields.insert(QString::fromUtf8(line.left(colon)),
                          QString::fromUtf8(line.mid(colon + 1)).trimmed());
    }
    return fields;
}

} // namespace

ContentReport readFirmwareArchive(int fd, bool clientFormat)
{
    ContentReport report;
    report.kind = QStringLiteral("firmware");
    Archive reader = newReader();
    archive_read_support_filter_all(reader.get());
    archive_read_support_format_all(reader.get());
    if (archive_read_open_fd(reader.get(), fd, blockSize) != ARCHIVE_OK) {
        if (clientFormat) {
            report.summary = QStringLiteral("the client's own update format");
            report.info(QStringLiteral("firmware-unknown-format"),
                        QStringLiteral("Not an archive this check reads; the format is the "
                                       "client's own."));
        } else {
            report.summary = QStringLiteral("not an archive");
            report.error(
                QStringLiteral("firmware-not-archive"),
                QStringLiteral("The archive does not open: %1.").arg(archiveError(reader.get())));
        }
        return report;
    }
    qint64 entries = 0, size = 0;
    QStringList outside;
    archive_entry *entry = nullptr;
    int status = ARCHIVE_OK;
    while (entries < maximumEntries && size <= maximumUnpacked &&
           (status = archive_read_next_header(reader.get(), &entry)) == ARCHIVE_OK) {
        ++entries;
        size += archive_entry_size(entry);
        const char *path = archive_entry_pathname(entry);
        if (path && leavesFolder(QString::fromUtf8(path)) && outside.size() < 5)
            outside.append(quoted(QString::fromUtf8(path)));
    }
    const QString format = QString::fromLatin1(archive_format_name(reader.get()));
    const QString filters = QString::fromLatin1(archive_filter_name(reader.get(), 0));
    report.summary =
        QStringLiteral("%1 archive%2: %3, %4 unpacked")
            .arg(format, filters == QLatin1String("none") ? QString()
                                                          : QStringLiteral(" (%1)").arg(filters))
            .arg(entries == 1 ? QStringLiteral("1 entry")
                              : QStringLiteral("%1 entries").arg(entries))
            .arg(bytes(size));
    if (status != ARCHIVE_OK && status != ARCHIVE_EOF)
        report.error(QStringLiteral("firmware-damaged"),
                     QStringLiteral("The archive is damaged after entry %1: %2.")
                         .arg(entries)
                         .arg(archiveError(reader.get())));
    else if (entries >= maximumEntries || size > maximumUnpacked)
        report.warning(QStringLiteral("firmware-too-large"),
                       QStringLiteral("Reading stopped after %1 entries and %2: the rest is not "
                                      "checked.")
                           .arg(entries)
                           .arg(bytes(size)));
    if (entries == 0 && status == ARCHIVE_EOF)
        report.error(QStringLiteral("firmware-empty"), QStringLiteral("The archive is empty."));
    if (!outside.isEmpty())
        report.warning(QStringLiteral("firmware-path-outside"),
                       QStringLiteral("Entries with an absolute path or \"..\" would land outside "
                                      "the folder it is unpacked in: %1.")
                           .arg(outside.join(QStringLiteral(", "))));
    return report;
}

ContentReport readDebianPackage(int fd, const QString &arch)
{
    ContentReport report;
    report.kind = QStringLiteral("deb");
    report.summary = QStringLiteral("not a Debian package");
    Archive outer = newReader();
    archive_read_support_format_ar(outer.get());
    if (archive_read_open_fd(outer.get(), fd, blockSize) != ARCHIVE_OK) {
        report.error(
            QStringLiteral("deb-not-deb"),
            QStringLiteral("The file is not a Debian package: %1.").arg(archiveError(outer.get())));
        return report;
    }
    QByteArray controlTar;
    archive_entry *entry = nullptr;
    bool debianBinary = false;
    while (archive_read_next_header(outer.get(), &entry) == ARCHIVE_OK) {
        const QByteArray name(archive_entry_pathname(entry) ? archive_entry_pathname(entry) : "");
        debianBinary = debianBinary || name == "debian-binary";
        if (!name.startsWith("control.tar"))
            continue;
        const qint64 size = archive_entry_size(entry);
        if (size <= 0 || size > maximumControlSize)
            break;
        controlTar.resize(static_cast<int>(size));
        if (archive_read_data(outer.get(), controlTar.data(), static_cast<size_t>(size)) != size)
            controlTar.clear();
        break;
    }
    if (!debianBinary || controlTar.isEmpty()) {
        report.error(QStringLiteral("deb-not-deb"),
                     QStringLiteral("The file is not a Debian package: it holds no readable "
                                    "control part."));
        return report;
    }
    Archive inner = newReader();
    archive_read_support_filter_all(inner.get());
    archive_read_support_format_tar(inner.get());
    QByteArray control;
    QStringList scripts;
    if (archive_read_open_memory(inner.get(), controlTar.constData(),
                                 static_cast<size_t>(controlTar.size())) == ARCHIVE_OK) {
        static const QStringList maintainerScripts{
            QStringLiteral("preinst"), QStringLiteral("postinst"), QStringLiteral("prerm"),
            QStringLiteral("postrm"), QStringLiteral("config")};
        while (archive_read_next_header(inner.get(), &entry) == ARCHIVE_OK) {
            QString name = QString::fromUtf8(archive_entry_pathname(entry));
            if (name.startsWith(QLatin1String("./")))
                name.remove(0, 2);
            const qint64 size = archive_entry_size(entry);
            if (name == QLatin1String("control") && size > 0 && size <= maximumControlSize) {
                control.resize(static_cast<int>(size));
                if (archive_read_data(inner.get(), control.data(), static_cast<size_t>(size)) !=
                    size)
                    control.clear();
            } else if (maintainerScripts.contains(name)) {
                scripts.append(name);
            }
        }
    }
    const QHash<QString, QString> fields = controlFields(control);
    const QString package = fields.value(QStringLiteral("Package"));
    if (package.isEmpty()) {
        report.error(QStringLiteral("deb-no-control"),
                     QStringLiteral("The package's control file cannot be read."));
        return report;
    }
    const QString architecture = fields.value(QStringLiteral("Architecture"));
    report.summary = QStringLiteral("Debian package %1 %2 for %3")
                         .arg(quoted(package), quoted(fields.value(QStringLiteral("Version"))),
                              quoted(architecture));
    if (architecture != arch && architecture != QLatin1String("all"))
        report.error(QStringLiteral("deb-architecture"),
                     QStringLiteral("Built for %1, not for the client's %2.")
                         .arg(quoted(architecture), arch));
    if (!scripts.isEmpty())
        report.info(QStringLiteral("deb-maintainer-scripts"),
                    QStringLiteral("Carries maintainer scripts, which run as root: %1.")
                        .arg(scripts.join(QStringLiteral(", "))));
    return report;
}

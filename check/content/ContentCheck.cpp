#include "ContentCheck.h"

#include "ArchiveReader.h"
#include "CertificateReader.h"
#include "DisclaimerReader.h"
#include "OpenVpnReader.h"
#include "PackageTypes.h"
#include "PictureReader.h"
#include "PpdReader.h"
#include "RdpReader.h"
#include "SafeFile.h"

#include <QThreadPool>

namespace {

// The most of a file each reader holds in memory.
const qint64 textLimit = qint64(16) * 1024 * 1024;
const qint64 pictureLimit = qint64(256) * 1024 * 1024;

bool nameEndsWith(const QString &name, std::initializer_list<const char *> suffixes)
{
    for (const char *suffix : suffixes) {
        if (name.endsWith(QLatin1String(suffix), Qt::CaseInsensitive))
            return true;
    }
    return false;
}

ContentReport unreadable(const QString &why)
{
    ContentReport report;
    report.kind = QStringLiteral("unreadable");
    report.summary = QStringLiteral("cannot be read");
    report.error(QStringLiteral("unreadable"),
                 QStringLiteral("The file cannot be read: %1.").arg(why));
    return report;
}

using R = InstallerRoutine;

QString kindOf(R routine)
{
    switch (routine) {
    case R::PrinterDrivers:
        return QStringLiteral("ppd");
    case R::Certificates:
        return QStringLiteral("certificate");
    case R::Update:
        return QStringLiteral("firmware");
    case R::ScreenConnect:
        return QStringLiteral("deb");
    case R::OpenVpn:
        return QStringLiteral("openvpn");
    case R::RdpFile:
        return QStringLiteral("rdp");
    case R::Disclaimer:
        return QStringLiteral("disclaimer");
    case R::Wallpaper:
    case R::Icon:
    case R::Desktop:
    case R::Screensaver:
    case R::ImprivataImage:
        break;
    }
    return QStringLiteral("picture");
}

ContentReport tooLarge(const QString &kind, qint64 limit)
{
    ContentReport report;
    report.kind = kind;
    report.summary = QStringLiteral("too large to read");
    report.warning(QStringLiteral("too-large"),
                   QStringLiteral("The file is larger than %1 MiB: its content is not checked.")
                       .arg(limit / (qint64(1024) * 1024)));
    return report;
}

} // namespace

ContentReport readContent(const QString &dir, const QString &name,
                          const QList<const PackageType *> &types, const ContentOptions &options)
{
    if (types.isEmpty())
        return {};
    SafeFile file(dir, name);
    if (!file.isOpen())
        return unreadable(file.error());
    const R routine = types.first()->routine;
    if (routine == R::Update)
        return readFirmwareArchive(file.fd(), nameEndsWith(name, {".tzupg"}));
    if (routine == R::ScreenConnect)
        return readDebianPackage(file.fd(), options.arch);
    const bool picture = kindOf(routine) == QLatin1String("picture");
    const qint64 limit = picture ? pictureLimit : textLimit;
    const QByteArray data = file.read(limit);
    if (file.truncated())
        return tooLarge(kindOf(routine), limit);
    if (picture)
        return readPicture(data, types);
    switch (routine) {
    case R::PrinterDrivers:
        return readPpd(data);
    case R::Certificates:
        return readCertificates(data, nameEndsWith(name, {".p12", ".pfx"}), options.now);
    case R::OpenVpn:
        return readOpenVpnProfile(data);
    case R::RdpFile:
        return readRdpFile(data);
    case R::Disclaimer:
        return readDisclaimer(data, file.size(), nameEndsWith(name, {".html"}));
    default:
        break;
    }
    return {};
}

void readContents(const QString &dir, const QList<ContentJob> &jobs, const ContentOptions &options)
{
    QThreadPool pool;
    for (const ContentJob &job : jobs)
        pool.start([&dir, job, &options] {
            *job.report = readContent(dir, job.name, job.types, options);
        });
    pool.waitForDone();
}

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

#include <openssl/crypto.h>

namespace {

// The most of a file each reader holds in memory.
const qint64 mebibyte = qint64(1024) * 1024;
const qint64 textLimit = 16 * mebibyte;
const qint64 pictureLimit = 256 * mebibyte;

bool nameEndsWith(const QString &name, std::initializer_list<const char *> suffixes)
{
    for (const char *suffix : suffixes) {
        if (name.endsWith(QLatin1String(suffix), Qt::CaseInsensitive))
            return true;
    }
    return false;
}

ContentReport unreadable(const QString &kind, const QString &why)
{
    ContentReport report;
    report.kind = kind;
    report.summary = QStringLiteral("cannot be read");
    report.error(QStringLiteral("unreadable"),
                 QStringLiteral("The file cannot be read: %1.").arg(why));
    return report;
}

QString kindOf(Content content)
{
    switch (content) {
    case Content::PrinterDriver:
        return QStringLiteral("ppd");
    case Content::Certificate:
        return QStringLiteral("certificate");
    case Content::Firmware:
        return QStringLiteral("firmware");
    case Content::DebianPackage:
        return QStringLiteral("deb");
    case Content::OpenVpnProfile:
        return QStringLiteral("openvpn");
    case Content::RdpFile:
        return QStringLiteral("rdp");
    case Content::Disclaimer:
        return QStringLiteral("disclaimer");
    case Content::Picture:
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
                       .arg(limit / mebibyte));
    return report;
}

} // namespace

ContentReport readContent(const QString &dir, const QString &name,
                          const QList<const PackageType *> &types, const ContentOptions &options)
{
    if (types.isEmpty())
        return {};
    const Content content = types.first()->content;
    SafeFile file(dir, name);
    if (!file.isOpen())
        return unreadable(kindOf(content), file.error());
    if (content == Content::Firmware)
        return readFirmwareArchive(file.fd(), nameEndsWith(name, {".tzupg"}));
    if (content == Content::DebianPackage)
        return readDebianPackage(file.fd(), options.arch);
    const bool picture = content == Content::Picture;
    const qint64 limit = picture ? pictureLimit : textLimit;
    const QByteArray data = file.read(limit);
    if (file.truncated())
        return tooLarge(kindOf(content), limit);
    if (picture)
        return readPicture(data, types);
    switch (content) {
    case Content::PrinterDriver:
        return readPpd(data);
    case Content::Certificate:
        return readCertificates(data, nameEndsWith(name, {".p12", ".pfx"}), options.now);
    case Content::OpenVpnProfile:
        return readOpenVpnProfile(data);
    case Content::RdpFile:
        return readRdpFile(data);
    case Content::Disclaimer:
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
            // libcrypto keeps state for each thread that used it until the thread says it is
            // done; the pool's threads end without a word otherwise.
            OPENSSL_thread_stop();
        });
    pool.waitForDone();
}

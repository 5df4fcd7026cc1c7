#include "StickReport.h"

#include "ReportsFolder.h"
#include "UniqueFd.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace record {

namespace {

QString errorText(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

// Writes all of content to fd and makes it reach the stick: a full stick may refuse the bytes
// only when they are flushed. Returns 0 or the errno of the failure.
int writeAll(int fd, const QByteArray &content)
{
    qint64 done = 0;
    while (done < content.size()) {
        const ssize_t wrote =
            ::write(fd, content.constData() + done, size_t(content.size() - done));
        if (wrote < 0) {
            if (errno == EINTR)
                continue;
            return errno;
        }
        done += wrote;
    }
    return ::fsync(fd) == 0 ? 0 : errno;
}

} // namespace

StickReportResult writeStickReport(const QString &mountDir, const QString &baseName,
                                   const QByteArray &content)
{
    StickReportResult result;
    const UniqueFd top(
        ::open(QFile::encodeName(mountDir).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!top.valid())
        return result;
    const UniqueFd folder(
        ::openat(top.get(), reportsFolderName, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!folder.valid()) {
        // Absent, a link (ELOOP) or not a folder: the stick asks for nothing.
        if (errno != ENOENT && errno != ELOOP && errno != ENOTDIR) {
            result.asked = true;
            result.error = QStringLiteral("cannot open %1: %2")
                               .arg(QLatin1String(reportsFolderName), errorText(errno));
        }
        return result;
    }
    result.asked = true;
    for (int attempt = 1; attempt <= 100; ++attempt) {
        const QString name = attempt == 1 ? baseName + QStringLiteral(".json")
                                          : QStringLiteral("%1-%2.json").arg(baseName).arg(attempt);
        const QByteArray encoded = QFile::encodeName(name);
        UniqueFd file(::openat(folder.get(), encoded.constData(),
                               O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0644));
        if (!file.valid()) {
            if (errno == EEXIST)
                continue;
            result.error = QStringLiteral("cannot create %1/%2: %3")
                               .arg(QLatin1String(reportsFolderName), name, errorText(errno));
            return result;
        }
        int error = writeAll(file.get(), content);
        if (file.close() != 0 && error == 0)
            error = errno;
        if (error != 0) {
            ::unlinkat(folder.get(), encoded.constData(), 0);
            result.error = QStringLiteral("cannot write %1/%2 (removed again): %3")
                               .arg(QLatin1String(reportsFolderName), name, errorText(error));
            return result;
        }
        result.file = QLatin1String(reportsFolderName) + QLatin1Char('/') + name;
        return result;
    }
    result.error = QStringLiteral("too many reports named %1 in %2")
                       .arg(baseName, QLatin1String(reportsFolderName));
    return result;
}

} // namespace record

#include "InstallerSupport.h"

#include "InstallJob.h"

#include <QCryptographicHash>
#include <QFile>

#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace installers {

QString sourcePath(const InstallJob &job, const QString &file)
{
    return QStringLiteral("%1/%2").arg(job.dir, file);
}

QString shellWord(const QString &word)
{
    const auto plain = [](QChar c) {
        const char16_t u = c.unicode();
        return (u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z') || (u >= '0' && u <= '9') ||
               QLatin1String("_./+,:=@%-").contains(c);
    };
    if (!word.isEmpty() && std::all_of(word.cbegin(), word.cend(), plain))
        return word;
    QString quoted = word;
    quoted.replace(QLatin1Char('\''), QLatin1String("'\\''"));
    return QLatin1Char('\'') + quoted + QLatin1Char('\'');
}

bool openRegularFile(QFile &file, const QString &path, bool followLink, struct stat *status)
{
    const int flags = O_RDONLY | O_NONBLOCK | O_CLOEXEC | (followLink ? 0 : O_NOFOLLOW);
    const int fd = ::open(QFile::encodeName(path).constData(), flags);
    if (fd < 0)
        return false;
    struct stat own;
    struct stat *opened = status ? status : &own;
    if (::fstat(fd, opened) != 0 || !S_ISREG(opened->st_mode) ||
        !file.open(fd, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        ::close(fd);
        return false;
    }
    return true;
}

QString pictureDigest(const QString &path)
{
    QFile file;
    if (!openRegularFile(file, path, true))
        return {};
    QCryptographicHash hash(QCryptographicHash::Md5);
    if (!hash.addData(&file))
        return {};
    return QString::fromLatin1(hash.result().toHex());
}

} // namespace installers

#include "SafeFile.h"

#include <QDir>
#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

SafeFile::SafeFile(const QString &dir, const QString &name)
{
    const QString path = dir + QLatin1Char('/') + name;
    QString target = path;
    if (QFileInfo(path).isSymLink()) {
        // Discovery offers a link only when it ends on the stick; the link may have changed
        // since, so its end is judged again here.
        const QString root = QDir(dir).canonicalPath();
        target = QFileInfo(path).canonicalFilePath();
        if (target.isEmpty() || !target.startsWith(root + QLatin1Char('/'))) {
            m_error = QStringLiteral("a link that does not end on the stick");
            return;
        }
    }
    const int fd = ::open(QFile::encodeName(target).constData(),
                          O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY | O_CLOEXEC);
    if (fd < 0) {
        m_error = QString::fromLocal8Bit(std::strerror(errno));
        return;
    }
    struct stat status
    {
    };
    if (::fstat(fd, &status) != 0 || !S_ISREG(status.st_mode)) {
        ::close(fd);
        m_error = QStringLiteral("not a regular file");
        return;
    }
    m_fd = fd;
    m_size = status.st_size;
}

SafeFile::~SafeFile()
{
    if (m_fd >= 0)
        ::close(m_fd);
}

QByteArray SafeFile::read(qint64 limit)
{
    QByteArray data;
    if (m_fd < 0)
        return data;
    data.resize(static_cast<int>(std::min(limit, m_size) + 1));
    qint64 done = 0;
    while (done < data.size()) {
        const ssize_t n = ::pread(m_fd, data.data() + done, static_cast<size_t>(data.size() - done),
                                  static_cast<off_t>(done));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        done += n;
    }
    m_truncated = done > limit;
    data.resize(static_cast<int>(std::min(done, limit)));
    return data;
}

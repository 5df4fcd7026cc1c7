#include "StickSnapshot.h"

#include <QCryptographicHash>
#include <QFile>

#include <climits>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

QByteArray contentHash(const QByteArray &path)
{
    const int fd = ::open(path.constData(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0)
        return QByteArrayLiteral("unreadable file");
    QCryptographicHash hash(QCryptographicHash::Sha256);
    char buffer[65536];
    ssize_t got = 0;
    while ((got = ::read(fd, buffer, sizeof buffer)) > 0)
        hash.addData(buffer, int(got));
    ::close(fd);
    if (got < 0)
        return QByteArrayLiteral("file with a read error");
    return "file " + hash.result().toHex();
}

void walk(const QByteArray &dir, StickSnapshot &entries)
{
    DIR *stream = ::opendir(dir.constData());
    if (!stream)
        return;
    while (const dirent *entry = ::readdir(stream)) {
        const QByteArray name(entry->d_name);
        if (name == "." || name == "..")
            continue;
        const QByteArray path = dir + '/' + name;
        struct stat status;
        if (::lstat(path.constData(), &status) != 0) {
            entries.insert(path, "vanished while listed");
        } else if (S_ISREG(status.st_mode)) {
            entries.insert(path, contentHash(path));
        } else if (S_ISLNK(status.st_mode)) {
            QByteArray target(PATH_MAX, '\0');
            const ssize_t length = ::readlink(path.constData(), target.data(), target.size());
            entries.insert(path, "link to " + target.left(int(qMax<ssize_t>(length, 0))));
        } else if (S_ISDIR(status.st_mode)) {
            entries.insert(path, "folder");
            walk(path, entries);
        } else {
            entries.insert(path, "special file " + QByteArray::number(status.st_mode, 8));
        }
    }
    ::closedir(stream);
}

} // namespace

StickSnapshot snapshotStick(const QString &dir)
{
    StickSnapshot entries;
    walk(QFile::encodeName(dir), entries);
    return entries;
}

QStringList snapshotDifferences(const StickSnapshot &before, const StickSnapshot &after)
{
    QStringList lines;
    for (auto it = before.cbegin(); it != before.cend(); ++it) {
        const QString name = QString::fromLatin1(it.key().toPercentEncoding("/ "));
        if (!after.contains(it.key()))
            lines << QStringLiteral("removed %1").arg(name);
        else if (after.value(it.key()) != it.value())
            lines << QStringLiteral("changed %1: %2 -> %3")
                         .arg(name, QString::fromLatin1(it.value()),
                              QString::fromLatin1(after.value(it.key())));
    }
    for (auto it = after.cbegin(); it != after.cend(); ++it) {
        if (!before.contains(it.key()))
            lines << QStringLiteral("added %1")
                         .arg(QString::fromLatin1(it.key().toPercentEncoding("/ ")));
    }
    return lines;
}

#include "CopyCheck.h"

#include "InstallerSupport.h"

#include <QCryptographicHash>
#include <QFile>

#include <sys/stat.h>

#include <cstring>

namespace installers {

namespace {

constexpr qint64 blockSize = 1 << 20;

} // namespace

SameBytes compareFiles(const QString &first, const QString &second)
{
    QFile a;
    QFile b;
    if (!openRegularFile(a, first, true) || !openRegularFile(b, second, true))
        return SameBytes::Unreadable;
    if (a.size() != b.size())
        return SameBytes::No;
    QByteArray blockA(blockSize, Qt::Uninitialized);
    QByteArray blockB(blockSize, Qt::Uninitialized);
    for (;;) {
        const qint64 readA = a.read(blockA.data(), blockSize);
        const qint64 readB = b.read(blockB.data(), blockSize);
        if (readA < 0 || readB < 0)
            return SameBytes::Unreadable;
        if (readA != readB ||
            std::memcmp(blockA.constData(), blockB.constData(), size_t(readA)) != 0)
            return SameBytes::No;
        if (readA == 0)
            return SameBytes::Yes;
    }
}

QString digestComparing(const QString &copy, const QString &source, SameBytes *same)
{
    *same = SameBytes::Unreadable;
    QFile file;
    if (!openRegularFile(file, copy, true))
        return {};
    QFile original;
    bool comparing = openRegularFile(original, source, true);
    bool differs = comparing && original.size() != file.size();
    QCryptographicHash hash(QCryptographicHash::Md5);
    QByteArray block(blockSize, Qt::Uninitialized);
    QByteArray sourceBlock(comparing ? blockSize : 0, Qt::Uninitialized);
    for (;;) {
        const qint64 read = file.read(block.data(), blockSize);
        if (read < 0)
            return {};
        if (read == 0)
            break;
        hash.addData(block.constData(), int(read));
        if (comparing && !differs) {
            if (original.read(sourceBlock.data(), read) != read)
                comparing = false;
            else
                differs =
                    std::memcmp(block.constData(), sourceBlock.constData(), size_t(read)) != 0;
        }
    }
    if (comparing)
        *same = differs ? SameBytes::No : SameBytes::Yes;
    return QString::fromLatin1(hash.result().toHex());
}

bool FileStamp::operator==(const FileStamp &other) const
{
    return device == other.device && inode == other.inode && size == other.size &&
           changedSeconds == other.changedSeconds && changedNanoseconds == other.changedNanoseconds;
}

std::optional<FileStamp> stampOf(const QString &path)
{
    struct stat status = {};
    if (stat(QFile::encodeName(path).constData(), &status) != 0)
        return std::nullopt;
    return FileStamp{quint64(status.st_dev), quint64(status.st_ino), qint64(status.st_size),
                     qint64(status.st_ctim.tv_sec), qint64(status.st_ctim.tv_nsec)};
}

} // namespace installers

#include "Sha256.h"

#include "StickEntry.h"
#include "UniqueFd.h"

#include <QFile>

#include <openssl/evp.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <memory>
#include <vector>

namespace record {

QString sha256OfFile(const QString &path)
{
    // Non-blocking, so that a FIFO put where a file was is refused rather than waited on.
    const UniqueFd fd(
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat info;
    if (!fd.valid() || ::fstat(fd.get(), &info) != 0 || !S_ISREG(info.st_mode))
        return {};
    ::posix_fadvise(fd.get(), 0, 0, POSIX_FADV_SEQUENTIAL);
    const std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX *)> context(EVP_MD_CTX_new(),
                                                                      EVP_MD_CTX_free);
    if (!context || EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) != 1)
        return {};
    std::vector<unsigned char> buffer(1 << 20);
    for (;;) {
        const ssize_t got = ::read(fd.get(), buffer.data(), buffer.size());
        if (got == 0)
            break;
        if (got < 0 || EVP_DigestUpdate(context.get(), buffer.data(), size_t(got)) != 1)
            return {};
    }
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int size = 0;
    if (EVP_DigestFinal_ex(context.get(), digest, &size) != 1)
        return {};
    return QString::fromLatin1(
        QByteArray(reinterpret_cast<const char *>(digest), int(size)).toHex());
}

} // namespace record

namespace {

// Each file's path where the safety rules offer it as type, else an empty text. Judged before
// the installation starts: a certificate's installer puts a blank-free copy on the stick for a
// while, which the rule would then find standing in the name's way.
QStringList judgedPaths(const PackageType &type, const QString &dir, const QStringList &files)
{
    const StickDirectory stick(dir);
    QStringList paths;
    for (const QString &file : files)
        paths.append(stick.judgeAgain(type, file).offered() ? dir + QLatin1Char('/') + file
                                                            : QString());
    return paths;
}

} // namespace

Sha256Worker::Sha256Worker(const PackageType &type, const QString &dir, const QStringList &files,
                           QObject *parent)
    : QThread(parent), paths(judgedPaths(type, dir, files))
{
    // Only time no other thread wants: the installation and the window come first.
    start(QThread::IdlePriority);
}

Sha256Worker::~Sha256Worker()
{
    wait();
}

QStringList Sha256Worker::digests()
{
    wait();
    return results;
}

void Sha256Worker::run()
{
    QStringList taken;
    for (const QString &path : paths)
        taken.append(path.isEmpty() ? QString() : record::sha256OfFile(path));
    results = taken;
}

#include "Sha256.h"

#include "StickEntry.h"
#include "UniqueFd.h"

#include <QFile>

#include <openssl/crypto.h>
#include <openssl/evp.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <memory>
#include <vector>

namespace {

// SHA-256 of an open file's bytes as 64 lower-case hexadecimal digits; empty when it is not a
// regular file or cannot be read.
QString sha256Of(int fd)
{
    struct stat info;
    if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode))
        return {};
    ::posix_fadvise(fd, 0, 0, POSIX_FADV_SEQUENTIAL);
    const std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX *)> context(EVP_MD_CTX_new(),
                                                                      EVP_MD_CTX_free);
    if (!context || EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) != 1)
        return {};
    std::vector<unsigned char> buffer(1 << 20);
    for (;;) {
        const ssize_t got = ::read(fd, buffer.data(), buffer.size());
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

// Each file opened where the safety rules offer it as type, else null. Judged before the
// installation starts: a certificate's installer puts a blank-free copy on the stick for a
// while, which the rule would then find standing in the name's way. Non-blocking, so that a
// FIFO put there between the judgement and the opening is refused rather than waited on.
std::vector<std::unique_ptr<UniqueFd>> judgedFiles(const PackageType &type, const QString &dir,
                                                   const QStringList &picked)
{
    const StickDirectory stick(dir);
    std::vector<std::unique_ptr<UniqueFd>> files;
    for (const QString &file : picked) {
        std::unique_ptr<UniqueFd> fd;
        if (stick.judgeAgain(type, file).offered())
            fd = std::make_unique<UniqueFd>(
                ::open(QFile::encodeName(dir + QLatin1Char('/') + file).constData(),
                       O_RDONLY | O_CLOEXEC | O_NONBLOCK));
        files.push_back(fd && fd->valid() ? std::move(fd) : nullptr);
    }
    return files;
}

} // namespace

Sha256Worker::Sha256Worker(const PackageType &type, const QString &dir, const QStringList &picked,
                           QObject *parent)
    : QThread(parent), files(judgedFiles(type, dir, picked))
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
    for (const std::unique_ptr<UniqueFd> &fd : files)
        taken.append(fd ? sha256Of(fd->get()) : QString());
    results = taken;
    // libcrypto keeps state for each thread that used it until the thread says it is done.
    OPENSSL_thread_stop();
}

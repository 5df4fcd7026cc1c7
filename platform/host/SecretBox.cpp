#include "SecretBox.h"

#include "HostLog.h"
#include "HostPaths.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sodium.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace secretbox {

namespace {

constexpr size_t keySize = crypto_secretbox_KEYBYTES;

// Wipes the key from memory when it goes out of scope.
struct Key
{
    unsigned char bytes[keySize];
    ~Key() { sodium_memzero(bytes, sizeof bytes); }
};

bool sodiumReady()
{
    static const bool ready = sodium_init() >= 0;
    return ready;
}

bool writeAll(int fd, const unsigned char *data, size_t size)
{
    while (size > 0) {
        const ssize_t n = ::write(fd, data, size);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        data += n;
        size -= static_cast<size_t>(n);
    }
    return true;
}

// 0 on success, otherwise an errno value (ENOENT: no key yet).
int readKey(const QByteArray &path, Key *key)
{
    const int fd = ::open(path.constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return errno;
    struct stat st;
    int result = 0;
    if (::fstat(fd, &st) != 0)
        result = errno;
    else if (!S_ISREG(st.st_mode) || st.st_size != static_cast<off_t>(keySize))
        result = EINVAL;
    size_t got = 0;
    while (result == 0 && got < keySize) {
        const ssize_t n = ::read(fd, key->bytes + got, keySize - got);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            result = n < 0 ? errno : EINVAL;
        else
            got += static_cast<size_t>(n);
    }
    ::close(fd);
    return result;
}

// Writes a fresh key to a private temporary file and links it into place, so that a reader
// never sees a partial key and two processes creating it at once end up with the same one.
bool createKey(const QByteArray &path)
{
    QDir().mkpath(QFileInfo(QFile::decodeName(path)).absolutePath());
    QByteArray temp = path + ".XXXXXX";
    const int fd = ::mkostemp(temp.data(), O_CLOEXEC); // mode 0600
    if (fd < 0)
        return false;
    Key key;
    randombytes_buf(key.bytes, keySize);
    bool ok = writeAll(fd, key.bytes, keySize) && ::fsync(fd) == 0;
    ok = ::close(fd) == 0 && ok;
    if (ok && ::link(temp.constData(), path.constData()) != 0 && errno != EEXIST)
        ok = false;
    ::unlink(temp.constData());
    return ok;
}

bool loadKey(Key *key)
{
    if (!sodiumReady()) {
        qCDebug(lcHostPlatform) << "cannot initialise libsodium";
        return false;
    }
    const QString file = hostpaths::keyFile();
    const QByteArray path = QFile::encodeName(file);
    int error = readKey(path, key);
    if (error == ENOENT && createKey(path))
        error = readKey(path, key);
    if (error != 0) {
        qCDebug(lcHostPlatform) << "cannot use the configuration key" << file << ":"
                                << (error == EINVAL ? "not a key file" : std::strerror(error));
        return false;
    }
    return true;
}

} // namespace

bool seal(const QString &clearText, QString *sealedText)
{
    Key key;
    if (!loadKey(&key))
        return false;
    const QByteArray message = clearText.toUtf8();
    QByteArray box(static_cast<int>(crypto_secretbox_NONCEBYTES + crypto_secretbox_MACBYTES) +
                       message.size(),
                   Qt::Uninitialized);
    auto *nonce = reinterpret_cast<unsigned char *>(box.data());
    randombytes_buf(nonce, crypto_secretbox_NONCEBYTES);
    crypto_secretbox_easy(nonce + crypto_secretbox_NONCEBYTES,
                          reinterpret_cast<const unsigned char *>(message.constData()),
                          static_cast<unsigned long long>(message.size()), nonce, key.bytes);
    *sealedText = QString::fromLatin1(box.toBase64());
    return true;
}

bool open(const QString &sealedText, QString *clearText)
{
    const auto decoded = QByteArray::fromBase64Encoding(sealedText.toLatin1(),
                                                        QByteArray::AbortOnBase64DecodingErrors);
    const QByteArray &box = decoded.decoded;
    const int overhead = static_cast<int>(crypto_secretbox_NONCEBYTES + crypto_secretbox_MACBYTES);
    if (!decoded || box.size() < overhead)
        return false;
    Key key;
    if (!loadKey(&key))
        return false;
    const auto *nonce = reinterpret_cast<const unsigned char *>(box.constData());
    const unsigned char *cipher = nonce + crypto_secretbox_NONCEBYTES;
    const auto cipherSize =
        static_cast<unsigned long long>(box.size()) - crypto_secretbox_NONCEBYTES;
    QByteArray message(box.size() - overhead, Qt::Uninitialized);
    if (crypto_secretbox_open_easy(reinterpret_cast<unsigned char *>(message.data()), cipher,
                                   cipherSize, nonce, key.bytes) != 0)
        return false;
    *clearText = QString::fromUtf8(message);
    sodium_memzero(message.data(), static_cast<size_t>(message.size()));
    return true;
}

} // namespace secretbox

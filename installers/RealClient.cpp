#include "RealClient.h"

#include "DaxProperties.h"
#include "DaxRegIni.h"
#include "DaxRegistry.h"
#include "DaxSystem.h"
#include "InstallJob.h"
#include "InstallerSupport.h"
#include "StickEntry.h"

#include <QDir>
#include <QFile>

#include <cstdlib>
#include <sys/stat.h>
#include <type_traits>
#include <unistd.h>

namespace {

const QString osVariantMarker = QStringLiteral("/tmp/.mvyx64");
const QString modalityFile = QStringLiteral("/boot/modality");
const char *const legacyRegistry = "/tmp/config/sessions.conf";

// The shell's exit status. The host platform returns it as it is. The client's own library may
// return a status of another form (system()-style) or nothing at all: there only zero against
// non-zero is trusted, and where it returns nothing the verification of the step's effects is
// all that counts. A template, so that the branch for the other kind of library is never
// compiled.
template <typename System> std::optional<int> runShell(const QString &line)
{
    if constexpr (std::is_void_v<decltype(System::execShell(line))>) {
        System::execShell(line);
        return std::nullopt;
    } else {
        return static_cast<int>(System::execShell(line));
    }
}

// The store's keys, all in one save; false when the store does not exist.
bool storeKeys(const QString &store, const QList<Effect> &keys)
{
    DaxProperties properties(store, QString(), true);
    if (!properties.Load())
        return false;
    for (const Effect &key : keys)
        properties.SetString(key.key, key.value);
    // Whether the save took is for the verification to find: the installer goes on as before.
    properties.Save();
    return true;
}

// The platform's registry has no way to read a value back: whether it took the value is all
// there is to verify.
bool setRegistryValue(const Effect &value)
{
    const QString root = value.path.section(QLatin1Char('\\'), 0, 0);
    const QString key = value.path.section(QLatin1Char('\\'), 1);
    DaxRegIni registry;
    registry.SetIniPath(legacyRegistry);
    if (registry.OpenKey(root, key, 0x20006) != 0)
        return false;
    const bool set = registry.SetSz(value.key, value.value) == 0;
    registry.CloseKey();
    return set;
}

} // namespace

bool RealClient::isLegacyMode()
{
    return DaxRegistry::isLegacyMode();
}

bool RealClient::hasOsVariantMarker()
{
    return QFile::exists(osVariantMarker);
}

std::optional<QString> RealClient::modality()
{
    if (!QFile::exists(modalityFile))
        return std::nullopt;
    QFile file(modalityFile);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    // Read as UTF-8 up to the first zero byte.
    return QString::fromUtf8(file.readLine().constData());
}

QString RealClient::digest(const QString &path)
{
    return installers::pictureDigest(path);
}

std::optional<QString> RealClient::judgeAgain(const InstallJob &job, const QString &file)
{
    const StickEntry entry = StickDirectory(job.dir).judgeAgain(*job.type, file);
    if (!entry.offered())
        return entry.reason();
    const QString path = installers::sourcePath(job, file);
    m_judged.remove(path);
    char *resolved = ::realpath(QFile::encodeName(path).constData(), nullptr);
    struct stat status;
    if (resolved && ::stat(resolved, &status) == 0)
        m_judged.insert(path, {QByteArray(resolved), status.st_dev, status.st_ino});
    std::free(resolved);
    return std::nullopt;
}

std::optional<QString> RealClient::refusesDestination(const QString &destination)
{
    struct stat status;
    if (::lstat(QFile::encodeName(destination).constData(), &status) != 0 ||
        !S_ISLNK(status.st_mode))
        return std::nullopt;
    return QStringLiteral("a link stands at %1, which a copy would write through").arg(destination);
}

bool RealClient::copyJudged(const QString &from, const QString &to)
{
    // Only the judged file, still the same regular file: a FIFO or a device standing there now
    // could hang the installation or fill the client.
    const auto judged = m_judged.constFind(from);
    if (judged == m_judged.cend())
        return false;
    QFile source;
    struct stat status;
    if (!installers::openRegularFile(source, QFile::decodeName(judged->resolved), false, &status) ||
        status.st_dev != judged->device || status.st_ino != judged->inode) {
        qCDebug(lcStick) << from << "is no longer the file judged: not copied";
        return false;
    }
    // Created new: an existing file is kept, and a link standing there is not written through.
    QFile copy(to);
    if (!copy.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return false;
    bool copied = true;
    for (QByteArray block; copied && !(block = source.read(1 << 16)).isEmpty();)
        copied = copy.write(block) == block.size();
    copied = copied && source.error() == QFileDevice::NoError && copy.flush() &&
             ::fchmod(copy.handle(), status.st_mode & 07777) == 0;
    if (!copied)
        copy.remove();
    return copied;
}

StepResult RealClient::perform(const Step &step)
{
    if (!step.command.isEmpty())
        return {runShell<DaxSystem>(step.command), true};
    if (step.effects.isEmpty())
        return {};
    const Effect &first = step.effects.first();
    switch (first.kind) {
    case Effect::Kind::Copies:
        copyJudged(first.source, first.path);
        return {};
    case Effect::Kind::MakesFolder:
        QDir().mkpath(first.path);
        return {};
    case Effect::Kind::SetsKey:
        return {std::nullopt, storeKeys(first.path, step.effects)};
    case Effect::Kind::SetsRegistry:
        return {std::nullopt, setRegistryValue(first)};
    case Effect::Kind::Removes:
    case Effect::Kind::Links:
        break;
    }
    return {std::nullopt, false};
}

bool RealClient::statusesAreExact()
{
#ifdef USBINSTALLER_VENDOR_PLATFORM
    return false;
#else
    return true;
#endif
}

#include "RealClient.h"

#include "DaxProperties.h"
#include "DaxRegIni.h"
#include "DaxRegistry.h"
#include "DaxSystem.h"
#include "InstallerSupport.h"

#include <QDir>
#include <QFile>

namespace {

const QString osVariantMarker = QStringLiteral("/tmp/.mvyx64");
const QString modalityFile = QStringLiteral("/boot/modality");
const char *const legacyRegistry = "/tmp/config/sessions.conf";

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

void RealClient::run(const QString &commandLine, const Effect & /*effect*/)
{
    DaxSystem::execShell(commandLine);
}

void RealClient::copyFile(const QString &from, const QString &to)
{
    QFile::copy(from, to);
}

void RealClient::makeFolder(const QString &folder)
{
    QDir().mkpath(folder);
}

bool RealClient::writeStore(const QString &store, const KeyValues &values)
{
    DaxProperties properties(store, QString(), true);
    if (!properties.Load())
        return false;
    for (const auto &value : values)
        properties.SetString(value.first, value.second);
    properties.Save();
    return true;
}

void RealClient::writeRegistry(const QString &key, const QString &name, const QString &value)
{
    DaxRegIni registry;
    registry.SetIniPath(legacyRegistry);
    if (registry.OpenKey(QStringLiteral("HKEY_LOCAL_MACHINE"), key, 0x20006) == 0) {
        registry.SetSz(name, value);
        registry.CloseKey();
    }
}

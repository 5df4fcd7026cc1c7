#include "HostPaths.h"

#include <QDir>

namespace hostpaths {

namespace {

QString fromEnvironment(const char *name)
{
    return qEnvironmentVariableIsEmpty(name) ? QString() : qEnvironmentVariable(name);
}

} // namespace

QString configRoot()
{
    const QString root = fromEnvironment("DAX_CONFIG_ROOT");
    return root.isEmpty() ? QString::fromLatin1(defaultConfigRoot) : root;
}

QString storeFile(const QString &storePath)
{
    if (storePath.isEmpty() || QDir::isAbsolutePath(storePath))
        return QString();
    const QStringList parts = storePath.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    if (parts.isEmpty() || parts.contains(QStringLiteral("..")))
        return QString();
    return QDir::cleanPath(configRoot() + QLatin1Char('/') + parts.join(QLatin1Char('/')) +
                           QStringLiteral("/config.xml"));
}

QString keyFile()
{
    const QString file = fromEnvironment("DAX_KEY_FILE");
    return file.isEmpty() ? configRoot() + QStringLiteral("/.key") : file;
}

} // namespace hostpaths

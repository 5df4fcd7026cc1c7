#ifndef HOSTPATHS_H
#define HOSTPATHS_H

#include <QString>

// Where the host implementation keeps the client's configuration on disk.
namespace hostpaths {

// Directory of the configuration stores: $DAX_CONFIG_ROOT, or defaultConfigRoot when unset.
inline constexpr const char defaultConfigRoot[] = "/var/lib/dax/config";
QString configRoot();

// The file of the store with configuration path storePath ("user/software/imprivata" gives
// <root>/user/software/imprivata/config.xml). Empty for a path that would leave the root
// (absolute, or with a ".." component).
QString storeFile(const QString &storePath);

// The key that seals encrypted values: $DAX_KEY_FILE, or <root>/.key when unset.
QString keyFile();

} // namespace hostpaths

#endif

#include "ReportsFolder.h"

#include <QFile>

#include <sys/stat.h>

namespace record {

bool collectsReports(const QString &mountDir)
{
    struct stat info;
    const QByteArray path =
        QFile::encodeName(mountDir + QLatin1Char('/') + QLatin1String(reportsFolderName));
    return ::lstat(path.constData(), &info) == 0 && S_ISDIR(info.st_mode);
}

} // namespace record

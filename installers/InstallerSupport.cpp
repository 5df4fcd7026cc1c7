#include "InstallerSupport.h"

#include "InstallJob.h"

#include <QCryptographicHash>
#include <QFile>

#include <algorithm>

namespace installers {

QString sourcePath(const InstallJob &job, const QString &file)
{
    return QStringLiteral("%1/%2").arg(job.dir, file);
}

QString shellWord(const QString &word)
{
    const auto plain = [](QChar c) {
        const char16_t u = c.unicode();
        return (u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z') || (u >= '0' && u <= '9') ||
               QLatin1String("_./+,:=@%-").contains(c);
    };
    if (!word.isEmpty() && std::all_of(word.cbegin(), word.cend(), plain))
        return word;
    QString quoted = word;
    quoted.replace(QLatin1Char('\''), QLatin1String("'\\''"));
    return QLatin1Char('\'') + quoted + QLatin1Char('\'');
}

QString pictureDigest(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QCryptographicHash hash(QCryptographicHash::Md5);
    if (!hash.addData(&file))
        return {};
    return QString::fromLatin1(hash.result().toHex());
}

} // namespace installers

#include "PackageTypes.h"

QStringList PackageType::patternList() const
{
    return QString::fromLatin1(patterns).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

QString PackageType::iconPath() const
{
    return QStringLiteral(":/dax-icons/usbrc/%1.png").arg(typeKey());
}

QString PackageType::progressLabel() const
{
    return qstrcmp(progressKey, key) == 0 ? QString::fromLatin1(progressText) : QString();
}

namespace PackageTypes {

const PackageType *find(const QString &key)
{
    for (const PackageType &type : all()) {
        if (key == QLatin1String(type.key))
            return &type;
    }
    return nullptr;
}

std::array<const PackageType *, count> inListOrder()
{
    std::array<const PackageType *, count> ordered{};
    for (const PackageType &type : all())
        ordered[static_cast<size_t>(type.listOrder - 1)] = &type;
    return ordered;
}

} // namespace PackageTypes

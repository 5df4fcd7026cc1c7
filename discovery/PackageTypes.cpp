#include "PackageTypes.h"

#include <algorithm>

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

std::array<const PackageType *, count> inWindowOrder()
{
    std::array<const PackageType *, count> ordered{};
    for (std::size_t i = 0; i < count; ++i)
        ordered[i] = &all()[i];
    std::stable_sort(ordered.begin(), ordered.end(),
                     [](const PackageType *a, const PackageType *b) {
                         return QString::localeAwareCompare(a->name(), b->name()) < 0;
                     });
    return ordered;
}

} // namespace PackageTypes

#include "TypeRow.h"

#include "PackageTypes.h"

#include <QtGlobal>

const PackageType &typeRow(const QString &key)
{
    const PackageType *row = PackageTypes::find(key);
    if (!row)
        qFatal("no package type %s", qPrintable(key));
    return *row;
}

#include "RcList.h"

#include "PackageTypes.h"
#include "StickEntry.h"

#include <QDir>
#include <QFileInfo>

RcList::RcList(const QString &dir) : dir(dir) {}

bool RcList::scan(const QString &type, const QStringList &patterns)
{
    const QDir directory(dir);
    if (!directory.exists())
        return false;

    // Every entry, so that the rule of what is offered is decided in one place.
    const StickDirectory stick(dir);
    const QFileInfoList listing = directory.entryInfoList(
        patterns, QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
    for (const QFileInfo &info : listing) {
        const StickEntry entry = stick.classify(info);
        if (entry.offered()) {
            entries.append({type, info.fileName()});
        } else if (entry.worthReporting() && !reported.contains(info.fileName())) {
            reported.insert(info.fileName());
            qCDebug(lcStick) << info.fileName()
                             << "is not offered:" << qUtf8Printable(entry.reason());
        }
    }
    return true;
}

bool RcList::hasType(const QString &type) const
{
    for (const RcEntry &entry : entries) {
        if (entry.type == type)
            return true;
    }
    return false;
}

QStringList RcList::filesOfType(const QString &type) const
{
    QStringList files;
    for (const RcEntry &entry : entries) {
        if (entry.type == type)
            files.append(entry.file);
    }
    return files;
}

void scanEveryType(RcList &list)
{
    for (const PackageType &type : PackageTypes::all())
        list.scan(type.typeKey(), type.patternList());
}

#include "RcList.h"

#include "PackageTypes.h"

#include <QDebug>
#include <QDir>
#include <QFileInfo>

namespace {

// Installers build shell command lines from these names and run them as root, so a name
// that could end or redirect a command, or break out of the double quotes around a path, is
// never offered. A '"' or '\' in a quoted path would make the shell act on another file: a
// certificate named a" "b.crt would have the stick's ab.crt removed.
bool isHostileName(const QString &name)
{
    for (const QChar c : name) {
        switch (c.unicode()) {
        case '$':
        case '`':
        case ';':
        case '&':
        case '|':
        case '<':
        case '>':
        case '"':
        case '\\':
        case '\n':
        case '\r':
            return true;
        default:
            break;
        }
    }
    return false;
}

} // namespace

RcList::RcList(const QString &dir) : dir(dir) {}

bool RcList::scan(const QString &type, const QStringList &patterns)
{
    const QDir directory(dir);
    if (!directory.exists())
        return false;

    const QFileInfoList listing = directory.entryInfoList(patterns, QDir::Files, QDir::Name);
    for (const QFileInfo &info : listing) {
        // QDir::Files also lists links to devices, FIFOs and sockets; an installer reading one
        // would hang or copy without end, so only links that end at a regular file are kept.
        if (!info.isFile())
            continue;
        const QString file = info.fileName();
        if (isHostileName(file)) {
            qDebug() << "skipping file with shell metacharacters in its name:" << file;
            continue;
        }
        entries.append({type, file});
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

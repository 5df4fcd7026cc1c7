#include "LinkRecheck.h"

#include "InstallJob.h"
#include "StickEntry.h"

#include <QDebug>

namespace installers {

bool keepOnlyFilesOnTheStick(InstallJob &job, const LeftOut &leftOut)
{
    if (job.files.isEmpty())
        return true;
    const StickDirectory stick(job.dir);
    QStringList kept;
    for (const QString &file : qAsConst(job.files)) {
        const StickEntry entry = stick.classify(file);
        if (entry.link && !entry.offered()) {
            qCDebug(lcStick) << file << "is left out of the installation:"
                             << qUtf8Printable(entry.reason());
            if (leftOut)
                leftOut(file, entry.reason());
            continue;
        }
        kept.append(file);
    }
    job.files = kept;
    return !kept.isEmpty();
}

} // namespace installers

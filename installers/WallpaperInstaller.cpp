#include "Installers.h"

#include "InstallJob.h"
#include "InstallerSupport.h"

namespace installers {

// Installs exactly one picture as the default wallpaper and shows it at once; no freeze.
int installWallpaper(InstallJob *job)
{
    const QString folder = filesDir() + QStringLiteral("/wallpapers");
    const QString current = filesDir() + QStringLiteral("/default_wp");
    if (job->files.size() != 1)
        return 0;
    const QString &name = job->files.first();
    runAll({
        fill("rm %1", current),
        fill("mkdir -p %1/", folder),
        fill("cp \"%1\" %2/", sourcePath(*job, name), folder),
        fill("ln -sf \"%1/%2\" %3", folder, name, current),
        fill("getxmlconfig -w user/system/desktop WALLPAPER \"%1/%2\"", folder, name),
        QStringLiteral("rm -rf /var/cache/wallpaper"),
        QStringLiteral("sync"),
        fill("setwp %1", current),
    });
    // Read through the link: the digest is that of the installed copy.
    const QString digest = pictureDigest(current);
    if (!digest.isEmpty())
        run(fill("getxmlconfig -w user/system/desktop WP_MD5 %1", digest));
    return 1;
}

} // namespace installers

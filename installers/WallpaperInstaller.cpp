#include "Installers.h"

#include "InstallJob.h"
#include "InstallerSupport.h"

namespace installers {

// Installs exactly one picture as the default wallpaper and shows it at once. No freeze: this
// is intended.
int installWallpaper(InstallJob *job)
{
    if (job->files.size() != 1)
        return 0;
    const QString &name = job->files.first();
    runAll({
        QStringLiteral("rm /tmp/config/files/default_wp"),
        QStringLiteral("mkdir -p /tmp/config/files/wallpapers/"),
        fill("cp \"%1/%2\" /tmp/config/files/wallpapers/", job->dir, name),
        fill("ln -sf \"/tmp/config/files/wallpapers/%1\" /tmp/config/files/default_wp", name),
        fill("getxmlconfig -w user/system/desktop WALLPAPER \"/tmp/config/files/wallpapers/%1\"",
             name),
        QStringLiteral("rm -rf /var/cache/wallpaper"),
        QStringLiteral("sync"),
        QStringLiteral("setwp /tmp/config/files/default_wp"),
    });
    // Read through the link: the digest is that of the installed copy.
    const QString digest = pictureDigest(QStringLiteral("/tmp/config/files/default_wp"));
    if (!digest.isEmpty())
        run(fill("getxmlconfig -w user/system/desktop WP_MD5 %1", digest));
    return 1;
}

} // namespace installers

#include "Installers.h"

#include "ClientAccess.h"
#include "InstallJob.h"
#include "InstallerSupport.h"

namespace installers {

// Installs exactly one picture as the default wallpaper and shows it at once; no freeze.
int installWallpaper(InstallJob *job, ClientAccess &client)
{
    const QString folder = filesDir() + QStringLiteral("/wallpapers");
    const QString current = filesDir() + QStringLiteral("/default_wp");
    const QString desktop = QStringLiteral("user/system/desktop");
    if (job->files.size() != 1)
        return 0;
    const QString &name = job->files.first();
    const QString installed = fill("%1/%2", folder, name);
    client.run(fill("rm %1", current), Effect::removes(current));
    client.run(fill("mkdir -p %1/", folder), Effect::makesFolder(folder + QLatin1Char('/')));
    client.run(fill("cp \"%1\" %2/", sourcePath(*job, name), folder),
               Effect::copies(sourcePath(*job, name), installed));
    client.run(fill("ln -sf \"%1\" %2", installed, current), Effect::links(current, installed));
    client.run(fill("getxmlconfig -w user/system/desktop WALLPAPER \"%1\"", installed),
               Effect::setsKey(desktop, QStringLiteral("WALLPAPER"), installed));
    client.run("rm -rf /var/cache/wallpaper",
               Effect::removes(QStringLiteral("/var/cache/wallpaper")));
    client.run("sync");
    client.run(fill("setwp %1", current));
    // Read through the link: the digest is that of the installed copy.
    const QString digest = client.digest(current);
    if (!digest.isEmpty())
        client.run(fill("getxmlconfig -w user/system/desktop WP_MD5 %1", digest),
                   Effect::setsKey(desktop, QStringLiteral("WP_MD5"), digest));
    return 1;
}

} // namespace installers

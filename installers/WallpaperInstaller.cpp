#include "Installers.h"

#include "ClientAccess.h"
#include "InstallJob.h"
#include "InstallerSupport.h"

namespace installers {

// Installs exactly one picture as the default wallpaper and shows it at once; no freeze.
int installWallpaper(InstallJob *job, ClientAccess &client)
{
    const QString folder = inTree(TreeName::Wallpapers);
    const QString current = inTree(TreeName::WallpaperLink);
    const QString desktop = QStringLiteral("user/system/desktop");
    // Judged before the first command: a skipped picture leaves the current wallpaper alone.
    if (job->files.size() != 1 || !client.mayRead(*job, job->files.first()))
        return 0;
    const QString &name = job->files.first();
    const QString installed = fill("%1/%2", folder, name);
    client.run(StepKind::Housekeeping, fill("rm %1", current), {Effect::removes(current)});
    client.run(StepKind::Housekeeping, fill("mkdir -p %1/", folder),
               {Effect::makesFolder(folder + QLatin1Char('/'))});
    client.run(StepKind::ConfigCopy, fill("cp \"%1\" %2/", sourcePath(*job, name), folder),
               {Effect::copies(sourcePath(*job, name), installed)});
    client.run(StepKind::Housekeeping, fill("ln -sf \"%1\" %2", installed, current),
               {Effect::links(current, installed)});
    client.run(StepKind::ClientTool,
               fill("getxmlconfig -w user/system/desktop WALLPAPER \"%1\"", installed),
               {Effect::setsKey(desktop, QStringLiteral("WALLPAPER"), installed)});
    client.run(StepKind::Housekeeping, "rm -rf /var/cache/wallpaper",
               {Effect::removes(QStringLiteral("/var/cache/wallpaper"))});
    client.run(StepKind::Housekeeping, "sync");
    client.run(StepKind::ClientTool, fill("setwp %1", current));
    // Read through the link: the digest is that of the installed copy.
    const QString digest = client.digest(current);
    if (!digest.isEmpty())
        client.run(StepKind::ClientTool,
                   fill("getxmlconfig -w user/system/desktop WP_MD5 %1", digest),
                   {Effect::setsKey(desktop, QStringLiteral("WP_MD5"), digest)});
    return 1;
}

} // namespace installers

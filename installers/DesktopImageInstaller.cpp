#include "Installers.h"

#include "ClientAccess.h"
#include "InstallJob.h"
#include "InstallerSupport.h"

#include <QDebug>

namespace installers {

namespace {

const QString desktopStore = QStringLiteral("user/system/desktop");

// What the client's modality asks for after the desktops were stopped, first match wins.
struct ModalityStart
{
    const char *name;
    const char *command; // nullptr: no desktop; the Citrix copy instead
};

const ModalityStart modalityStarts[] = {
    {"ZUL-O", "vmw-desktop &"},
    {"ZUL-V", "vmw-desktop &"},
    {"ZUL-M", "rdp-desktop &"},
    {"ZUL-C", nullptr},
};

void startDesktopForModality(const InstallJob &job, ClientAccess &client)
{
    const std::optional<QString> modality = client.modality();
    if (!modality) {
        client.run(StepKind::Background, "vmw-desktop &");
        client.run(StepKind::Background, "rdp-desktop &");
        client.run(StepKind::Background, "rdp2x-desktop &");
        return;
    }
    for (const ModalityStart &start : modalityStarts) {
        if (!modality->contains(QLatin1String(start.name)))
            continue;
        if (start.command) {
            client.run(StepKind::Background, start.command);
        } else {
            // Citrix gets the picture from the stick, not the launch pad copy: read a second
            // time, so judged a second time.
            const QString &name = job.files.first();
            if (!client.mayRead(job, name))
                return;
            const QString source = sourcePath(job, name);
            const QString citrix = inTree(TreeName::CitrixDesktop);
            client.run(StepKind::ConfigCopy, fill("cp \"%1\" %2", source, citrix),
                       {Effect::copies(source, citrix)});
        }
        return;
    }
}

} // namespace

// Installs the first chosen picture as the desktop image and restarts the desktop the client's
// modality calls for.
int installDesktop(InstallJob *job, ClientAccess &client)
{
    if (job->files.isEmpty() || !client.mayRead(*job, job->files.first()))
        return 0;
    const QString &name = job->files.first();
    const QString source = sourcePath(*job, name);
    const QString launchPad = inTree(TreeName::LaunchPad);
    const QString link = inTree(TreeName::DesktopLink);
    const bool osVariant = client.hasOsVariantMarker();
    qDebug() << "RMF - Installing " << source;
    client.run(StepKind::Housekeeping, fill("mkdir -p %1", launchPad),
               {Effect::makesFolder(launchPad)});
    const QString destination = fill("%1/%2", launchPad, name);
    // The template is filled first and the source put in whole, so a "%1", "%2" or "%20" in a
    // name is just part of it (the client's command would fill those too).
    client.run(StepKind::ConfigCopy, fill("cp \"%1\" \"%2/%3\" ", source, launchPad, name),
               {Effect::copies(source, destination)});
    client.run(StepKind::Housekeeping, fill("ln -sf \"%1\" %2", destination, link),
               {Effect::links(link, destination)});
    client.run(StepKind::ClientTool,
               fill("getxmlconfig -w user/system/desktop DESKTOP_IMG \"%1\"", destination),
               {Effect::setsKey(desktopStore, QStringLiteral("DESKTOP_IMG"), destination)});
    const QString digest = client.digest(destination);
    if (!digest.isEmpty())
        client.run(StepKind::ClientTool,
                   fill("getxmlconfig -w user/system/desktop DESKTOP_MD5 %1", digest),
                   {Effect::setsKey(desktopStore, QStringLiteral("DESKTOP_MD5"), digest)});
    client.run(StepKind::StopDesktop, "killall vmw-desktop");
    client.run(StepKind::StopDesktop, "killall _citrix-desktop");
    client.run(StepKind::StopDesktop, "killall rdp-desktop");
    client.run(StepKind::StopDesktop, "killall rdp2x-desktop");
    // On the marked OS variant no desktop is started again and the modality is not
    // looked at.
    if (!osVariant)
        startDesktopForModality(*job, client);
    const QString oldImages = filesDir() + QStringLiteral("/desktop-img-*");
    client.run(StepKind::Housekeeping, fill("rm -rf %1", oldImages), {Effect::removes(oldImages)});
    client.run(StepKind::ClientTool, "freeze");
    return 1;
}

} // namespace installers

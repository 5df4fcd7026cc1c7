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

// Fills every "%1" and "%2" of a text in one pass; other "%" sequences stay as they are.
QString fillTwo(const QString &text, const QString &first, const QString &second)
{
    QString result;
    result.reserve(text.size() + first.size() + second.size());
    for (int i = 0; i < text.size(); ++i) {
        if (text.at(i) == QLatin1Char('%') && i + 1 < text.size()) {
            const QChar digit = text.at(i + 1);
            if (digit == QLatin1Char('1') || digit == QLatin1Char('2')) {
                result += digit == QLatin1Char('1') ? first : second;
                ++i;
                continue;
            }
        }
        result += text.at(i);
    }
    return result;
}

void startDesktopForModality(const QString &source, ClientAccess &client)
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
            // Citrix gets the picture from the stick, not the launch pad copy.
            const QString citrix = filesDir() + QStringLiteral("/citrix-desktop.jpg");
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
    if (job->files.isEmpty())
        return 0;
    const QString &name = job->files.first();
    const QString source = sourcePath(*job, name);
    const QString launchPad = filesDir() + QStringLiteral("/launchpad");
    const QString link = filesDir() + QStringLiteral("/desktop_img.jpg");
    const bool osVariant = client.hasOsVariantMarker();
    qDebug() << "RMF - Installing " << source;
    client.run(StepKind::Housekeeping, fill("mkdir -p %1", launchPad),
               {Effect::makesFolder(launchPad)});
    const QString destination = fill("%1/%2", launchPad, name);
    // The source path is spliced in before the placeholders are filled, so a "%1" or
    // "%2" in it is filled as well.
    client.run(StepKind::ConfigCopy,
               fillTwo(QStringLiteral("cp \"") + source + QStringLiteral("\" \"%1/%2\" "),
                       launchPad, name),
               {Effect::copies(fillTwo(source, launchPad, name), destination)});
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
        startDesktopForModality(source, client);
    const QString oldImages = filesDir() + QStringLiteral("/desktop-img-*");
    client.run(StepKind::Housekeeping, fill("rm -rf %1", oldImages), {Effect::removes(oldImages)});
    client.run(StepKind::ClientTool, "freeze");
    return 1;
}

} // namespace installers

#include "Installers.h"

#include "InstallJob.h"
#include "InstallerSupport.h"

#include <QDebug>
#include <QFile>

namespace installers {

namespace {

// Whether this client is the OS variant marked by /tmp/.mvyx64; every run sets it before it
// reads it.
bool osVariant = false;

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

// The first line of /boot/modality with its line end, as UTF-8 up to the first zero byte;
// empty when the file cannot be opened.
QString modalityText()
{
    QFile file(QStringLiteral("/boot/modality"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readLine().constData());
}

void startDesktopForModality(const QString &source)
{
    if (!QFile::exists(QStringLiteral("/boot/modality"))) {
        runAll({
            QStringLiteral("vmw-desktop &"),
            QStringLiteral("rdp-desktop &"),
            QStringLiteral("rdp2x-desktop &"),
        });
        return;
    }
    const QString modality = modalityText();
    for (const ModalityStart &start : modalityStarts) {
        if (!modality.contains(QLatin1String(start.name)))
            continue;
        if (start.command)
            run(start.command);
        else // Citrix gets the picture from the stick, not the launch pad copy.
            run(fill("cp \"%1\" %2/citrix-desktop.jpg", source, filesDir()));
        return;
    }
}

} // namespace

// Installs the first chosen picture as the desktop image and restarts the desktop the client's
// modality calls for.
int installDesktop(InstallJob *job)
{
    if (job->files.isEmpty())
        return 0;
    const QString &name = job->files.first();
    const QString source = sourcePath(*job, name);
    const QString launchPad = filesDir() + QStringLiteral("/launchpad");
    osVariant = QFile::exists(QStringLiteral("/tmp/.mvyx64"));
    qDebug() << "RMF - Installing " << source;
    run(fill("mkdir -p %1", launchPad));
    // The source path is spliced in before the placeholders are filled, so a "%1" or
    // "%2" in it is filled as well.
    run(fillTwo(QStringLiteral("cp \"") + source + QStringLiteral("\" \"%1/%2\" "), launchPad,
                name));
    const QString destination = fill("%1/%2", launchPad, name);
    run(fill("ln -sf \"%1\" %2/desktop_img.jpg", destination, filesDir()));
    run(fill("getxmlconfig -w user/system/desktop DESKTOP_IMG \"%1\"", destination));
    const QString digest = pictureDigest(destination);
    if (!digest.isEmpty())
        run(fill("getxmlconfig -w user/system/desktop DESKTOP_MD5 %1", digest));
    runAll({
        QStringLiteral("killall vmw-desktop"),
        QStringLiteral("killall _citrix-desktop"),
        QStringLiteral("killall rdp-desktop"),
        QStringLiteral("killall rdp2x-desktop"),
    });
    // On the marked OS variant no desktop is started again and the modality is not
    // looked at.
    if (!osVariant)
        startDesktopForModality(source);
    run(fill("rm -rf %1/desktop-img-*", filesDir()));
    run("freeze");
    return 1;
}

} // namespace installers

#include "ExpectedCommands.h"

#include "PackageTypes.h"

#include <QCryptographicHash>
#include <QFile>
#include <QRegularExpression>

namespace {

const QString files = QStringLiteral("/tmp/config/files");

QString quoted(const QString &text)
{
    return QLatin1Char('"') + text + QLatin1Char('"');
}

// A path where a template leaves it bare: whole in single quotes unless every character is one
// the shell reads as itself.
QString bare(QString text)
{
    static const QRegularExpression plain(QStringLiteral("^[A-Za-z0-9_./+,:=@%-]+$"));
    if (plain.match(text).hasMatch())
        return text;
    return QLatin1Char('\'') + text.replace(QLatin1Char('\''), QLatin1String("'\\''")) +
           QLatin1Char('\'');
}

// MD5 of a file as the installers take it; empty when it cannot be opened or read.
QString digestOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly)
               ? QString::fromLatin1(
                     QCryptographicHash::hash(file.readAll(), QCryptographicHash::Md5).toHex())
               : QString();
}

// The digest command of a desktop-store key and its getxmlconfig call, when the installed copy
// can be read.
void addDigest(ExpectedRun &run, const QString &key, const QString &installedCopy)
{
    const QString digest = digestOf(installedCopy);
    if (digest.isEmpty())
        return;
    run.shell << QStringLiteral("getxmlconfig -w user/system/desktop %1 %2").arg(key, digest);
    run.calls << callLine(
        QStringLiteral("getxmlconfig"),
        {QStringLiteral("-w"), QStringLiteral("user/system/desktop"), key, digest});
}

void certificates(ExpectedRun &run, const QString &dir, const QStringList &names)
{
    for (const QString &name : names) {
        const QString source = dir + QLatin1Char('/') + name;
        QString blankFree = name;
        blankFree.remove(QLatin1Char(' '));
        if (blankFree != name)
            run.shell << QStringLiteral("cp %1 %2")
                             .arg(quoted(source), quoted(dir + QLatin1Char('/') + blankFree));
        run.shell << QStringLiteral("cp %1 %2")
                         .arg(quoted(source), quoted(files + "/cacerts/" + blankFree))
                  << QStringLiteral("certs install ") + quoted(blankFree);
        if (blankFree != name)
            run.shell << QStringLiteral("rm ") + quoted(dir + QLatin1Char('/') + blankFree);
        run.calls << callLine(QStringLiteral("certs"), {QStringLiteral("install"), blankFree});
    }
    run.shell << QStringLiteral("certs register") << QStringLiteral("freeze");
    run.calls << callLine(QStringLiteral("certs"), {QStringLiteral("register")})
              << callLine(QStringLiteral("freeze"));
}

void wallpaper(ExpectedRun &run, const QString &source, const QString &name)
{
    const QString copy = files + "/wallpapers/" + name;
    run.shell << QStringLiteral("rm /tmp/config/files/default_wp")
              << QStringLiteral("mkdir -p /tmp/config/files/wallpapers/")
              << QStringLiteral("cp %1 /tmp/config/files/wallpapers/").arg(quoted(source))
              << QStringLiteral("ln -sf %1 /tmp/config/files/default_wp").arg(quoted(copy))
              << QStringLiteral("getxmlconfig -w user/system/desktop WALLPAPER ") + quoted(copy)
              << QStringLiteral("rm -rf /var/cache/wallpaper") << QStringLiteral("sync")
              << QStringLiteral("setwp /tmp/config/files/default_wp");
    run.calls << callLine(QStringLiteral("getxmlconfig"),
                          {QStringLiteral("-w"), QStringLiteral("user/system/desktop"),
                           QStringLiteral("WALLPAPER"), copy})
              << callLine(QStringLiteral("setwp"), {files + QStringLiteral("/default_wp")});
    addDigest(run, QStringLiteral("WP_MD5"), files + QStringLiteral("/default_wp"));
}

void desktop(ExpectedRun &run, const QString &source, const QString &name)
{
    const QString copy = files + "/launchpad/" + name;
    // The copy command ends in a blank.
    run.shell << QStringLiteral("mkdir -p /tmp/config/files/launchpad")
              << QStringLiteral("cp %1 %2 ").arg(quoted(source), quoted(copy))
              << QStringLiteral("ln -sf %1 /tmp/config/files/desktop_img.jpg").arg(quoted(copy))
              << QStringLiteral("getxmlconfig -w user/system/desktop DESKTOP_IMG ") + quoted(copy);
    run.calls << callLine(QStringLiteral("getxmlconfig"),
                          {QStringLiteral("-w"), QStringLiteral("user/system/desktop"),
                           QStringLiteral("DESKTOP_IMG"), copy});
    addDigest(run, QStringLiteral("DESKTOP_MD5"), copy);
    // No marker and no /boot/modality: every desktop is stopped and all three are started.
    run.shell << QStringLiteral("killall vmw-desktop") << QStringLiteral("killall _citrix-desktop")
              << QStringLiteral("killall rdp-desktop") << QStringLiteral("killall rdp2x-desktop")
              << QStringLiteral("vmw-desktop &") << QStringLiteral("rdp-desktop &")
              << QStringLiteral("rdp2x-desktop &")
              << QStringLiteral("rm -rf /tmp/config/files/desktop-img-*")
              << QStringLiteral("freeze");
    run.calls << callLine(QStringLiteral("freeze"));
    run.background << callLine(QStringLiteral("vmw-desktop"))
                   << callLine(QStringLiteral("rdp-desktop"))
                   << callLine(QStringLiteral("rdp2x-desktop"));
}

void rdpFile(ExpectedRun &run, const QString &source)
{
    run.shell << QStringLiteral("/usr/bin/rdpimport ") + bare(source)
              << QStringLiteral("killall rdp-desktop") << QStringLiteral("rdp-desktop.sh &")
              << QStringLiteral("freeze");
    run.calls << callLine(QStringLiteral("rdpimport"), {source})
              << callLine(QStringLiteral("freeze"));
    run.background << callLine(QStringLiteral("rdp-desktop.sh"));
}

} // namespace

QString callLine(const QString &tool, const QStringList &args)
{
    QString line = tool;
    for (QString arg : args) {
        arg.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
        arg.replace(QLatin1Char(']'), QLatin1String("\\]"));
        arg.replace(QLatin1Char('\n'), QLatin1String("\\n"));
        line += QLatin1String(" [") + arg + QLatin1Char(']');
    }
    return line;
}

QString toolOf(const QString &line)
{
    return line.section(QLatin1Char(' '), 0, 0);
}

ExpectedRun expectedRun(const QString &type, const QString &dir, const QStringList &names)
{
    ExpectedRun run;
    const PackageType *row = PackageTypes::find(type);
    if (!row || names.isEmpty())
        return run;
    const QString &name = names.first();
    const QString source = dir + QLatin1Char('/') + name;
    switch (row->routine) {
    case InstallerRoutine::PrinterDrivers:
        run.shell << QStringLiteral("ppddb /tmp/config/files/ppd /tmp/config/files/printdrivers.db")
                  << QStringLiteral("freeze");
        run.calls << callLine(QStringLiteral("ppddb"), {files + QStringLiteral("/ppd"),
                                                        files + QStringLiteral("/printdrivers.db")})
                  << callLine(QStringLiteral("freeze"));
        break;
    case InstallerRoutine::Certificates:
        certificates(run, dir, names);
        break;
    case InstallerRoutine::Update:
        run.shell << QStringLiteral("tar-upgrade ") + quoted(source);
        run.calls << callLine(QStringLiteral("tar-upgrade"), {source});
        break;
    case InstallerRoutine::ScreenConnect:
        run.shell << QStringLiteral("rm -r /boot/screenconnect*")
                  << QStringLiteral("rm -r /boot/*.deb") << QStringLiteral("freeze");
        run.calls << callLine(QStringLiteral("freeze"));
        break;
    case InstallerRoutine::Wallpaper:
        wallpaper(run, source, name);
        break;
    case InstallerRoutine::Icon:
        run.shell << QStringLiteral("mkdir -p /tmp/config/files/icons/")
                  << QStringLiteral("cp %1 /tmp/config/files/icons/").arg(quoted(source))
                  << QStringLiteral("sleep 1");
        break;
    case InstallerRoutine::Desktop:
        desktop(run, source, name);
        break;
    case InstallerRoutine::Screensaver:
        run.shell << QStringLiteral("freeze");
        run.calls << callLine(QStringLiteral("freeze"));
        break;
    case InstallerRoutine::ImprivataImage:
        run.shell << QStringLiteral("cp %1 %2").arg(quoted(source), bare(files + "/" + name))
                  << QStringLiteral("touch /tmp/proveidevents/reloadcfg");
        break;
    case InstallerRoutine::OpenVpn:
        run.shell << QStringLiteral("mkdir -p /tmp/config/files/openvpn/client")
                  << QStringLiteral("mkdir -p /etc/openvpn/client")
                  << QStringLiteral("cp %1 /tmp/config/files/openvpn/client").arg(quoted(source))
                  << QStringLiteral("ln -s %1 /etc/openvpn/client")
                         .arg(bare(files + "/openvpn/client/" + name))
                  << QStringLiteral("ovpn2xml &") << QStringLiteral("sleep 1");
        run.background << callLine(QStringLiteral("ovpn2xml"));
        break;
    case InstallerRoutine::RdpFile:
        rdpFile(run, source);
        break;
    case InstallerRoutine::Disclaimer:
        run.shell << QStringLiteral("cp %1 /tmp/config/files/disclaimer.txt").arg(bare(source))
                  << QStringLiteral("getxmlconfig -wff user/system/desktop DISCLAIMER "
                                    "/tmp/config/files/disclaimer.txt")
                  << QStringLiteral("freeze");
        run.calls << callLine(QStringLiteral("getxmlconfig"),
                              {QStringLiteral("-wff"), QStringLiteral("user/system/desktop"),
                               QStringLiteral("DISCLAIMER"),
                               files + QStringLiteral("/disclaimer.txt")})
                  << callLine(QStringLiteral("freeze"));
        break;
    }
    return run;
}

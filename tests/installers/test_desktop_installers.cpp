#include "InstallJob.h"
#include "Installers.h"
#include "PlannedRun.h"
#include "RealClient.h"
#include "SimClient.h"
#include "TypeRow.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtTest>

// Screensaver, RDP import, desktop image, wallpaper and Imprivata images on the simulated
// client: the command lines run, the stand-ins' calls, the files and keys left, the results.
class TestDesktopInstallers : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void screensaverCopiesEveryPictureThenFreezes();
    void screensaverKeepsAnExistingPicture();

    void rdpImportReloadsByOsVariant_data();
    void rdpImportReloadsByOsVariant();
    void rdpImportTakesTheFirstFile();

    void desktopWithMarkerStartsNothing();
    void desktopStartsByModality_data();
    void desktopStartsByModality();
    void desktopQuotesAndDigestsTheInstalledCopy_data();
    void desktopQuotesAndDigestsTheInstalledCopy();
    void desktopFailedCopyStillLinksAndSetsTheKey();
    void desktopFillsPlaceholdersInTheSourcePath();

    void wallpaperNeedsExactlyOnePicture_data();
    void wallpaperNeedsExactlyOnePicture();
    void wallpaperQuotesTheNameAndRecordsTheDigest();
    void wallpaperFromAnUnreadableStickLeavesADanglingLink();

    void imprivataWritesPathAndDigest_data();
    void imprivataWritesPathAndDigest();
    void imprivataLegacyWritesOnlyThePath();
    void imprivataMissingStoreRefuses();
    void imprivataNeedsExactlyOnePicture_data();
    void imprivataNeedsExactlyOnePicture();

private:
    QByteArray m_imprivataStore;
};

namespace {

const QString desktopStore = QStringLiteral("user/system/desktop");
const QString imprivataStore = QStringLiteral("user/software/imprivata");
const QString marker = QStringLiteral("/tmp/.mvyx64");
const QString modality = QStringLiteral("/boot/modality");

installers::Routine imprivata(int kind)
{
    return [kind](InstallJob *job, ClientAccess &client) {
        return installers::installImprivataImage(job, kind, client);
    };
}

QString md5(const QString &path)
{
    return QString::fromLatin1(
        QCryptographicHash::hash(simclient::readFile(path), QCryptographicHash::Md5).toHex());
}

void writeFile(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(content) < 0)
        qFatal("cannot write %s", qPrintable(path));
}

QString imprivataStoreFile()
{
    return qEnvironmentVariable("DAX_CONFIG_ROOT") + QStringLiteral("/") + imprivataStore +
           QStringLiteral("/config.xml");
}

// Everything the desktop image installer runs before the restart by modality.
QStringList desktopPrefix(const QString &dir, const QString &name, const QString &digest)
{
    const QString copy = QStringLiteral("/tmp/config/files/launchpad/") + name;
    QStringList lines{
        QStringLiteral("mkdir -p /tmp/config/files/launchpad"),
        QStringLiteral("cp \"%1/%2\" \"%3\" ").arg(dir, name, copy),
        QStringLiteral("ln -sf \"%1\" /tmp/config/files/desktop_img.jpg").arg(copy),
        QStringLiteral("getxmlconfig -w user/system/desktop DESKTOP_IMG \"%1\"").arg(copy),
    };
    if (!digest.isEmpty())
        lines << QStringLiteral("getxmlconfig -w user/system/desktop DESKTOP_MD5 ") + digest;
    lines << QStringLiteral("killall vmw-desktop") << QStringLiteral("killall _citrix-desktop")
          << QStringLiteral("killall rdp-desktop") << QStringLiteral("killall rdp2x-desktop");
    return lines;
}

const QStringList desktopSuffix{QStringLiteral("rm -rf /tmp/config/files/desktop-img-*"),
                                QStringLiteral("freeze")};

} // namespace

void TestDesktopInstallers::initTestCase()
{
    simclient::requireSim();
    m_imprivataStore = simclient::readFile(imprivataStoreFile());
    QVERIFY(QFile::exists(imprivataStoreFile()));
}

void TestDesktopInstallers::init()
{
    simclient::clearLogs();
}

// Each case starts from the client's own state: no marker, no modality file, no installed
// pictures, the Imprivata store as the client has it, no legacy mode, no desktop running.
void TestDesktopInstallers::cleanup()
{
    QFile::remove(marker);
    QFile::remove(modality);
    QDir(modality).removeRecursively();
    for (const char *dir : {"/tmp/config/files/launchpad", "/tmp/config/files/wallpapers",
                            "/tmp/config/files/screensaver", "/tmp/proveidevents"})
        QDir(QString::fromLatin1(dir)).removeRecursively();
    writeFile(imprivataStoreFile(), m_imprivataStore);
    QFile::remove(QStringLiteral("/tmp/config/sessions.conf"));
    qunsetenv("DAX_LEGACY_MODE");
    QProcess::execute(QStringLiteral("killall"),
                      {QStringLiteral("-q"), QStringLiteral("vmw-desktop"),
                       QStringLiteral("rdp-desktop"), QStringLiteral("rdp2x-desktop"),
                       QStringLiteral("rdp-desktop.sh")});
}

void TestDesktopInstallers::screensaverCopiesEveryPictureThenFreezes()
{
    const QStringList names{"e.jpg", "a b.png", "c.jpg", "d.bmp", "b.jpg"};
    const QString dir = simclient::makeStick(names);
    QVERIFY(!QFile::exists(QStringLiteral("/tmp/config/files/screensaver")));

    InstallJob job(typeRow("screensaver"), dir, names);
    QCOMPARE(simclient::install(installers::installScreensaver, job), 1);

    for (const QString &name : names)
        QCOMPARE(simclient::readFile(QStringLiteral("/tmp/config/files/screensaver/") + name),
                 name.toUtf8());
    QCOMPARE(simclient::shellLog(), QStringList{"freeze"});
    QCOMPARE(simclient::calls(QStringLiteral("freeze")).size(), 1);

    simclient::clearLogs();
    InstallJob empty(typeRow("screensaver"), dir, {});
    QCOMPARE(simclient::install(installers::installScreensaver, empty), 1);
    QCOMPARE(simclient::shellLog(), QStringList{"freeze"});
}

void TestDesktopInstallers::screensaverKeepsAnExistingPicture()
{
    writeFile(QStringLiteral("/tmp/config/files/screensaver/a.jpg"), "old picture");
    const QString dir = simclient::makeStick({"a.jpg", "b.jpg"});
    InstallJob job(typeRow("screensaver"), dir, {"a.jpg", "b.jpg"});
    QCOMPARE(simclient::install(installers::installScreensaver, job), 1);
    QCOMPARE(simclient::readFile(QStringLiteral("/tmp/config/files/screensaver/a.jpg")),
             QByteArray("old picture"));
    QCOMPARE(simclient::readFile(QStringLiteral("/tmp/config/files/screensaver/b.jpg")),
             QByteArray("b.jpg"));
    QCOMPARE(simclient::shellLog(), QStringList{"freeze"});
}

void TestDesktopInstallers::rdpImportReloadsByOsVariant_data()
{
    QTest::addColumn<bool>("withMarker");
    QTest::addColumn<QStringList>("reload");
    QTest::newRow("marker") << true << QStringList{"/usr/bin/reload_desktop"};
    QTest::newRow("no marker") << false << QStringList{"killall rdp-desktop", "rdp-desktop.sh &"};
}

void TestDesktopInstallers::rdpImportReloadsByOsVariant()
{
    QFETCH(bool, withMarker);
    QFETCH(QStringList, reload);
    if (withMarker)
        writeFile(marker, {});
    const QString dir = simclient::makeStick({"office.rdp"});
    InstallJob job(typeRow("rdpfile"), dir, {"office.rdp"});
    QCOMPARE(simclient::install(installers::installRdpFile, job), 1);

    const QStringList expected =
        QStringList{QStringLiteral("/usr/bin/rdpimport %1/office.rdp").arg(dir)} + reload +
        QStringList{"freeze"};
    QCOMPARE(simclient::shellLog(), expected);
    QCOMPARE(simclient::calls(QStringLiteral("rdpimport")),
             QStringList{QStringLiteral("rdpimport [%1/office.rdp]").arg(dir)});
    QCOMPARE(simclient::calls(QStringLiteral("reload_desktop")).size(), withMarker ? 1 : 0);
    QCOMPARE(simclient::calls(QStringLiteral("freeze")).size(), 1);
}

void TestDesktopInstallers::rdpImportTakesTheFirstFile()
{
    const QStringList files{"b.rdp", "a.rdp"};
    const QString dir = simclient::makeStick(files);
    InstallJob job(typeRow("rdpfile"), dir, files);
    QCOMPARE(simclient::install(installers::installRdpFile, job), 1);
    QCOMPARE(simclient::calls(QStringLiteral("rdpimport")),
             QStringList{QStringLiteral("rdpimport [%1/b.rdp]").arg(dir)});

    simclient::clearLogs();
    InstallJob empty(typeRow("rdpfile"), dir, {});
    QCOMPARE(simclient::install(installers::installRdpFile, empty), 0);
    QVERIFY(simclient::shellLog().isEmpty());
}

void TestDesktopInstallers::desktopWithMarkerStartsNothing()
{
    writeFile(marker, {});
    writeFile(modality, "ZUL-O\n");
    const QString dir = simclient::makeStick({"desk.jpg"});
    InstallJob job(typeRow("desktop"), dir, {"desk.jpg"});
    QCOMPARE(simclient::install(installers::installDesktop, job), 1);
    QCOMPARE(simclient::shellLog(),
             desktopPrefix(dir, "desk.jpg", md5(dir + "/desk.jpg")) + desktopSuffix);
    QCOMPARE(simclient::calls(QStringLiteral("freeze")).size(), 1);

    // The flag is set again by every run: without the marker the modality counts.
    QFile::remove(marker);
    simclient::clearLogs();
    QCOMPARE(simclient::install(installers::installDesktop, job), 1);
    QVERIFY(simclient::shellLog().contains(QStringLiteral("vmw-desktop &")));
}

void TestDesktopInstallers::desktopStartsByModality_data()
{
    QTest::addColumn<QByteArray>("modalityFile"); // "dir": a folder that cannot be read
    QTest::addColumn<bool>("exists");
    QTest::addColumn<QStringList>("starts");
    const QString citrix =
        QStringLiteral("cp \"%1/desk.jpg\" /tmp/config/files/citrix-desktop.jpg");

    QTest::newRow("no modality file")
        << QByteArray() << false
        << QStringList{"vmw-desktop &", "rdp-desktop &", "rdp2x-desktop &"};
    QTest::newRow("ZUL-O") << QByteArray("ZUL-O\n") << true << QStringList{"vmw-desktop &"};
    QTest::newRow("ZUL-V") << QByteArray("mode ZUL-V\n") << true << QStringList{"vmw-desktop &"};
    QTest::newRow("ZUL-M") << QByteArray("ZUL-M") << true << QStringList{"rdp-desktop &"};
    QTest::newRow("ZUL-C") << QByteArray("ZUL-C\n") << true << QStringList{citrix};
    QTest::newRow("ZUL-M and ZUL-O")
        << QByteArray("ZUL-M ZUL-O\n") << true << QStringList{"vmw-desktop &"};
    QTest::newRow("ZUL-C and ZUL-M")
        << QByteArray("ZUL-C,ZUL-M\n") << true << QStringList{"rdp-desktop &"};
    QTest::newRow("lower case") << QByteArray("zul-o zul-v zul-m zul-c\n") << true << QStringList{};
    QTest::newRow("name on the second line")
        << QByteArray("thin\nZUL-M\n") << true << QStringList{};
    QTest::newRow("name after a zero byte") << QByteArray("x\0ZUL-M\n", 8) << true << QStringList{};
    QTest::newRow("empty file") << QByteArray("") << true << QStringList{};
    QTest::newRow("unreadable") << QByteArray("dir") << true << QStringList{};
}

void TestDesktopInstallers::desktopStartsByModality()
{
    QFETCH(QByteArray, modalityFile);
    QFETCH(bool, exists);
    QFETCH(QStringList, starts);
    if (modalityFile == "dir")
        QVERIFY(QDir().mkpath(modality));
    else if (exists)
        writeFile(modality, modalityFile);

    const QString dir = simclient::makeStick({"desk.jpg"}, {"stick picture"});
    InstallJob job(typeRow("desktop"), dir, {"desk.jpg"});
    QCOMPARE(simclient::install(installers::installDesktop, job), 1);

    for (QString &start : starts)
        start.replace(QStringLiteral("%1"), dir);
    QCOMPARE(simclient::shellLog(),
             desktopPrefix(dir, "desk.jpg", md5(dir + "/desk.jpg")) + starts + desktopSuffix);
    if (QTest::currentDataTag() == QByteArray("ZUL-C"))
        QCOMPARE(simclient::readFile(QStringLiteral("/tmp/config/files/citrix-desktop.jpg")),
                 QByteArray("stick picture"));
}

void TestDesktopInstallers::desktopQuotesAndDigestsTheInstalledCopy_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::newRow("plain") << QStringList{"desk.jpg"};
    QTest::newRow("blanks and quote") << QStringList{"my desk 'one'.jpg"};
    QTest::newRow("only the first of three") << QStringList{"one.jpg", "two.jpg", "three.jpg"};
}

void TestDesktopInstallers::desktopQuotesAndDigestsTheInstalledCopy()
{
    QFETCH(QStringList, files);
    writeFile(modality, "ZUL-C\n");
    const QString dir = simclient::makeStick(files);
    InstallJob job(typeRow("desktop"), dir, files);
    QCOMPARE(simclient::install(installers::installDesktop, job), 1);

    const QString name = files.first();
    const QString copy = QStringLiteral("/tmp/config/files/launchpad/") + name;
    QCOMPARE(simclient::readFile(copy), name.toUtf8());
    QCOMPARE(QDir(QStringLiteral("/tmp/config/files/launchpad")).entryList(QDir::Files),
             QStringList{name});
    QCOMPARE(QFileInfo(QStringLiteral("/tmp/config/files/desktop_img.jpg")).symLinkTarget(), copy);
    QCOMPARE(simclient::storeValue(desktopStore, QStringLiteral("DESKTOP_IMG")), copy);
    QCOMPARE(simclient::storeValue(desktopStore, QStringLiteral("DESKTOP_MD5")), md5(copy));
    QCOMPARE(simclient::readFile(QStringLiteral("/tmp/config/files/citrix-desktop.jpg")),
             name.toUtf8());
}

void TestDesktopInstallers::desktopFailedCopyStillLinksAndSetsTheKey()
{
    const QString dir = simclient::makeStick({});
    InstallJob job(typeRow("desktop"), dir, {"gone.jpg"});
    QCOMPARE(simclient::install(installers::installDesktop, job), 1);

    const QString copy = QStringLiteral("/tmp/config/files/launchpad/gone.jpg");
    QCOMPARE(simclient::shellLog(),
             desktopPrefix(dir, "gone.jpg", QString()) +
                 (QStringList{"vmw-desktop &", "rdp-desktop &", "rdp2x-desktop &"}) +
                 desktopSuffix);
    QCOMPARE(QFileInfo(QStringLiteral("/tmp/config/files/desktop_img.jpg")).symLinkTarget(), copy);
    QCOMPARE(simclient::storeValue(desktopStore, QStringLiteral("DESKTOP_IMG")), copy);

    simclient::clearLogs();
    InstallJob empty(typeRow("desktop"), dir, {});
    QCOMPARE(simclient::install(installers::installDesktop, empty), 0);
    QVERIFY(simclient::shellLog().isEmpty());
}

// The source path joins the copy command before its placeholders are filled.
void TestDesktopInstallers::desktopFillsPlaceholdersInTheSourcePath()
{
    const QString dir = QStringLiteral("/tmp/sticks/p%1q%2r%3");
    writeFile(dir + QStringLiteral("/desk.jpg"), "picture");
    InstallJob job(typeRow("desktop"), dir, {"desk.jpg"});
    QTest::ignoreMessage(QtDebugMsg, "RMF - Installing  \"/tmp/sticks/p%1q%2r%3/desk.jpg\"");
    QCOMPARE(simclient::install(installers::installDesktop, job), 1);
    QCOMPARE(simclient::shellLog().value(1),
             QStringLiteral("cp \"/tmp/sticks/p/tmp/config/files/launchpadqdesk.jpgr%3/desk.jpg\" "
                            "\"/tmp/config/files/launchpad/desk.jpg\" "));
}

void TestDesktopInstallers::wallpaperNeedsExactlyOnePicture_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::newRow("none") << QStringList{};
    QTest::newRow("two") << QStringList{"a.jpg", "b.jpg"};
}

void TestDesktopInstallers::wallpaperNeedsExactlyOnePicture()
{
    QFETCH(QStringList, files);
    const QString dir = simclient::makeStick(files);
    InstallJob job(typeRow("wallpaper"), dir, files);
    QCOMPARE(simclient::install(installers::installWallpaper, job), 0);
    QVERIFY(simclient::shellLog().isEmpty());
}

void TestDesktopInstallers::wallpaperQuotesTheNameAndRecordsTheDigest()
{
    const QString name = QStringLiteral("my wall.jpg");
    const QString dir = simclient::makeStick({name}, {"wallpaper picture"});
    InstallJob job(typeRow("wallpaper"), dir, {name});
    QCOMPARE(simclient::install(installers::installWallpaper, job), 1);

    const QString copy = QStringLiteral("/tmp/config/files/wallpapers/my wall.jpg");
    const QString digest = md5(copy);
    QCOMPARE(simclient::shellLog(),
             (QStringList{
                 "rm /tmp/config/files/default_wp",
                 "mkdir -p /tmp/config/files/wallpapers/",
                 QStringLiteral("cp \"%1/my wall.jpg\" /tmp/config/files/wallpapers/").arg(dir),
                 "ln -sf \"/tmp/config/files/wallpapers/my wall.jpg\" /tmp/config/files/default_wp",
                 "getxmlconfig -w user/system/desktop WALLPAPER "
                 "\"/tmp/config/files/wallpapers/my wall.jpg\"",
                 "rm -rf /var/cache/wallpaper",
                 "sync",
                 "setwp /tmp/config/files/default_wp",
                 "getxmlconfig -w user/system/desktop WP_MD5 " + digest,
             }));
    QCOMPARE(simclient::readFile(copy), QByteArray("wallpaper picture"));
    QCOMPARE(QFileInfo(QStringLiteral("/tmp/config/files/default_wp")).symLinkTarget(), copy);
    QCOMPARE(simclient::storeValue(desktopStore, QStringLiteral("WALLPAPER")), copy);
    QCOMPARE(simclient::storeValue(desktopStore, QStringLiteral("WP_MD5")), digest);
    QCOMPARE(simclient::readFile(QStringLiteral("/var/lib/sim/wallpaper")), (copy + "\n").toUtf8());
    QVERIFY(simclient::calls(QStringLiteral("freeze")).isEmpty());
}

void TestDesktopInstallers::wallpaperFromAnUnreadableStickLeavesADanglingLink()
{
    const QString dir = simclient::makeStick({"old.jpg"});
    InstallJob previous(typeRow("wallpaper"), dir, {"old.jpg"});
    QCOMPARE(simclient::install(installers::installWallpaper, previous), 1);
    const QString oldDigest = simclient::storeValue(desktopStore, QStringLiteral("WP_MD5"));
    QCOMPARE(oldDigest.size(), 32);

    simclient::clearLogs();
    InstallJob job(typeRow("wallpaper"), dir, {"gone.jpg"});
    QCOMPARE(simclient::install(installers::installWallpaper, job), 1);

    const QFileInfo link(QStringLiteral("/tmp/config/files/default_wp"));
    QVERIFY(link.isSymLink());
    QCOMPARE(link.symLinkTarget(), QStringLiteral("/tmp/config/files/wallpapers/gone.jpg"));
    QVERIFY(!link.exists());
    QCOMPARE(simclient::storeValue(desktopStore, QStringLiteral("WALLPAPER")),
             QStringLiteral("/tmp/config/files/wallpapers/gone.jpg"));
    QCOMPARE(simclient::storeValue(desktopStore, QStringLiteral("WP_MD5")), oldDigest);
    QCOMPARE(simclient::shellLog().size(), 8);
    QCOMPARE(simclient::shellLog().last(), QStringLiteral("setwp /tmp/config/files/default_wp"));
}

void TestDesktopInstallers::imprivataWritesPathAndDigest_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("pathValue");
    QTest::addColumn<QString>("digestValue");
    QTest::newRow("iwallpaper") << 0 << "Background"
                                << "Background_MD5";
    QTest::newRow("iproxcard") << 1 << "ProxCardImage"
                               << "ProxCardImage_MD5";
    QTest::newRow("ilogo") << 2 << "CoBranding"
                           << "CoBranding_MD5";
}

void TestDesktopInstallers::imprivataWritesPathAndDigest()
{
    QFETCH(int, kind);
    QFETCH(QString, pathValue);
    QFETCH(QString, digestValue);
    QVERIFY(QDir().mkpath(QStringLiteral("/tmp/proveidevents")));
    const QString dir = simclient::makeStick({"card.png"}, {"card picture"});
    InstallJob job(typeRow("ilogo"), dir, {"card.png"});
    QCOMPARE(simclient::install(imprivata(kind), job), 1);

    const QString copy = QStringLiteral("/tmp/config/files/card.png");
    QCOMPARE(simclient::shellLog(),
             (QStringList{QStringLiteral("cp \"%1/card.png\" %2").arg(dir, copy),
                          "touch /tmp/proveidevents/reloadcfg"}));
    QCOMPARE(simclient::readFile(copy), QByteArray("card picture"));
    QCOMPARE(simclient::storeValue(imprivataStore, pathValue), copy);
    QCOMPARE(simclient::storeValue(imprivataStore, digestValue), md5(copy));
    QVERIFY(QFile::exists(QStringLiteral("/tmp/proveidevents/reloadcfg")));
    QVERIFY(simclient::calls(QStringLiteral("freeze")).isEmpty());
}

void TestDesktopInstallers::imprivataLegacyWritesOnlyThePath()
{
    qputenv("DAX_LEGACY_MODE", "1");
    const QString dir = simclient::makeStick({"card.png"});
    InstallJob job(typeRow("iproxcard"), dir, {"card.png"});
    QCOMPARE(simclient::install(imprivata(1), job), 1);

    QCOMPARE(simclient::shellLog(),
             QStringList{QStringLiteral("cp \"%1/card.png\" /tmp/config/files/card.png").arg(dir)});
    const QByteArray ini = simclient::readFile(QStringLiteral("/tmp/config/sessions.conf"));
    QVERIFY2(ini.contains("[HKEY_LOCAL_MACHINE\\Software\\Kelto\\Imprivata]\n"
                          "ProxCardImage=/tmp/config/files/card.png\n"),
             ini.constData());
    QVERIFY2(!ini.contains("MD5"), ini.constData());
    QCOMPARE(simclient::readFile(imprivataStoreFile()), m_imprivataStore);
}

void TestDesktopInstallers::imprivataMissingStoreRefuses()
{
    QVERIFY(QFile::remove(imprivataStoreFile()));
    const QString dir = simclient::makeStick({"logo.png"});
    InstallJob job(typeRow("ilogo"), dir, {"logo.png"});
    QTest::ignoreMessage(QtDebugMsg, "user/software/imprivata/config.xml does not exist");
    // The check plans for a client that has its stores: run without a plan.
    RealClient client;
    QCOMPARE(installers::installImprivataImage(&job, 2, client), 0);
    QCOMPARE(simclient::readFile(QStringLiteral("/tmp/config/files/logo.png")),
             QByteArray("logo.png"));
    QCOMPARE(simclient::shellLog().size(), 1);
    QVERIFY(!QFile::exists(imprivataStoreFile()));
}

void TestDesktopInstallers::imprivataNeedsExactlyOnePicture_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QStringList>("files");
    for (int kind : {0, 1, 2}) {
        QTest::addRow("kind %d, two", kind) << kind << QStringList{"a.png", "b.png"};
        QTest::addRow("kind %d, none", kind) << kind << QStringList{};
    }
}

void TestDesktopInstallers::imprivataNeedsExactlyOnePicture()
{
    QFETCH(int, kind);
    QFETCH(QStringList, files);
    const QString dir = simclient::makeStick(files);
    InstallJob job(typeRow("ilogo"), dir, files);
    QCOMPARE(simclient::install(imprivata(kind), job), 0);
    QVERIFY(simclient::shellLog().isEmpty());
    QCOMPARE(simclient::readFile(imprivataStoreFile()), m_imprivataStore);
}

QTEST_GUILESS_MAIN(TestDesktopInstallers)
#include "test_desktop_installers.moc"

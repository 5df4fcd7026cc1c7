#include "InstallJob.h"
#include "Installers.h"
#include "PlannedRun.h"
#include "RealClient.h"
#include "SimClient.h"
#include "TypeRow.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QScopeGuard>
#include <QtTest>

using namespace installers;

using RoutineFunction = int (*)(InstallJob *, ClientAccess &);
Q_DECLARE_METATYPE(RoutineFunction)

// Certificates, printer drivers, firmware update, ScreenConnect, OpenVPN, icon and disclaimer,
// run on the simulated client: what the shell ran, what the client's tools were called with,
// what landed in the client's tree, and what each routine returned.
class TestSystemInstallers : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void certificates_data();
    void certificates();

    void printerDrivers_data();
    void printerDrivers();
    void printerDriverAlreadyInstalledIsKept();
    void printerDriversWithoutDriverFolder();

    void jobsRefusedOrEmpty_data();
    void jobsRefusedOrEmpty();

    void firmwareUpdatePathWithBlanks();

    void screenConnect_data();
    void screenConnect();

    void openVpn();

    void iconWithBlankInItsName();

    void disclaimer_data();
    void disclaimer();
};

namespace {

using Snapshot = QMap<QString, QByteArray>;

// Every file of a directory with its content.
Snapshot snapshot(const QString &dir)
{
    Snapshot files;
    const QStringList names = QDir(dir).entryList(QDir::Files | QDir::Hidden | QDir::System);
    for (const QString &name : names)
        files.insert(name, simclient::readFile(dir + QLatin1Char('/') + name));
    return files;
}

// "{dir}" in each expected line stands for the stick's directory.
QStringList expand(const QStringList &lines, const QString &dir)
{
    QStringList result;
    for (QString line : lines)
        result.append(line.replace(QLatin1String("{dir}"), dir));
    return result;
}

// A stick at a path of the test's choosing (for blanks in the directory); content = name.
QString stickAt(const QString &dir, const QStringList &files)
{
    QDir().mkpath(dir);
    for (const QString &name : files) {
        QFile file(dir + QLatin1Char('/') + name);
        if (!file.open(QIODevice::WriteOnly))
            qFatal("cannot create %s", qPrintable(file.fileName()));
        file.write(name.toUtf8());
    }
    return dir;
}

bool writeFile(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
           file.write(content) == content.size();
}

QStringList debugLines;
QtMessageHandler previousHandler = nullptr;

void captureDebug(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (type == QtDebugMsg)
        debugLines.append(message);
    previousHandler(type, context, message);
}

} // namespace

void TestSystemInstallers::initTestCase()
{
    simclient::requireSim();
    QVERIFY(QFileInfo(QStringLiteral("/tmp/config/files/cacerts")).isDir());
    QVERIFY(QFileInfo(QStringLiteral("/tmp/config/files/ppd")).isDir());
}

void TestSystemInstallers::init()
{
    simclient::clearLogs();
}

void TestSystemInstallers::certificates_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QStringList>("blankFree");
    QTest::addColumn<QStringList>("commands");

    QTest::newRow("name with blanks")
        << QStringList{"my cert.crt"} << QStringList{"mycert.crt"}
        << QStringList{
               R"(cp "{dir}/my cert.crt" "{dir}/mycert.crt")",
               R"(cp "{dir}/my cert.crt" "/tmp/config/files/cacerts/mycert.crt")",
               R"(certs install "mycert.crt")",
               R"(rm "{dir}/mycert.crt")",
               "certs register",
               "freeze",
           };
    QTest::newRow("name without blanks")
        << QStringList{"server.pem"} << QStringList{"server.pem"}
        << QStringList{
               R"(cp "{dir}/server.pem" "/tmp/config/files/cacerts/server.pem")",
               R"(certs install "server.pem")",
               "certs register",
               "freeze",
           };
    QTest::newRow("several files")
        << QStringList{"a b c.pem", "root.crt", "my ca.der"}
        << QStringList{"abc.pem", "root.crt", "myca.der"}
        << QStringList{
               R"(cp "{dir}/a b c.pem" "{dir}/abc.pem")",
               R"(cp "{dir}/a b c.pem" "/tmp/config/files/cacerts/abc.pem")",
               R"(certs install "abc.pem")",
               R"(rm "{dir}/abc.pem")",
               R"(cp "{dir}/root.crt" "/tmp/config/files/cacerts/root.crt")",
               R"(certs install "root.crt")",
               R"(cp "{dir}/my ca.der" "{dir}/myca.der")",
               R"(cp "{dir}/my ca.der" "/tmp/config/files/cacerts/myca.der")",
               R"(certs install "myca.der")",
               R"(rm "{dir}/myca.der")",
               "certs register",
               "freeze",
           };
    QTest::newRow("empty selection")
        << QStringList{} << QStringList{} << QStringList{"certs register", "freeze"};
}

void TestSystemInstallers::certificates()
{
    QFETCH(QStringList, files);
    QFETCH(QStringList, blankFree);
    QFETCH(QStringList, commands);

    const QString stick = simclient::makeStick(files);
    const Snapshot stickBefore = snapshot(stick);
    InstallJob job(typeRow("cert"), stick, files);

    debugLines.clear();
    previousHandler = qInstallMessageHandler(captureDebug);
    const int result = simclient::install(installCertificates, job);
    qInstallMessageHandler(previousHandler);

    QCOMPARE(result, 0);
    QCOMPARE(simclient::shellLog(), expand(commands, stick));
    QCOMPARE(job.files, blankFree);
    QCOMPARE(snapshot(stick), stickBefore);

    QStringList expectedDebug;
    QStringList expectedCalls;
    for (int i = 0; i < files.size(); ++i) {
        expectedDebug.append(QStringLiteral(" RMF - cert  \"%1\"").arg(files.at(i)));
        expectedCalls.append(QStringLiteral("certs [install] [%1]").arg(blankFree.at(i)));
        // Fed from the selected file itself: its content is its original name.
        QCOMPARE(simclient::readFile("/tmp/config/files/cacerts/" + blankFree.at(i)),
                 files.at(i).toUtf8());
        QCOMPARE(simclient::readFile("/var/lib/sim/certs/" + blankFree.at(i)),
                 files.at(i).toUtf8());
    }
    expectedCalls << QStringLiteral("certs [register]") << QStringLiteral("freeze");
    QCOMPARE(debugLines, expectedDebug);
    QCOMPARE(simclient::calls(), expectedCalls);
}

void TestSystemInstallers::printerDrivers_data()
{
    QTest::addColumn<QStringList>("files");

    QTest::newRow("three drivers") << QStringList{"laser.ppd", "colour laser.ppd", "inkjet.ppd"};
    QTest::newRow("empty selection") << QStringList{};
}

void TestSystemInstallers::printerDrivers()
{
    QFETCH(QStringList, files);

    const QString stick = simclient::makeStick(files);
    InstallJob job(typeRow("ppd"), stick, files);
    QCOMPARE(simclient::install(installPrinterDrivers, job), 1);

    QCOMPARE(
        simclient::shellLog(),
        (QStringList{"ppddb /tmp/config/files/ppd /tmp/config/files/printdrivers.db", "freeze"}));
    QCOMPARE(simclient::calls(),
             (QStringList{"ppddb [/tmp/config/files/ppd] [/tmp/config/files/printdrivers.db]",
                          "freeze"}));
    const QStringList database = simclient::printerDatabaseDrivers();
    for (const QString &name : files) {
        QCOMPARE(simclient::readFile("/tmp/config/files/ppd/" + name), name.toUtf8());
        QVERIFY2(database.contains(name), qPrintable(name));
    }
}

void TestSystemInstallers::printerDriverAlreadyInstalledIsKept()
{
    QVERIFY(writeFile("/tmp/config/files/ppd/office.ppd", "installed earlier"));
    const QString stick = simclient::makeStick({"office.ppd"}, {"newer driver"});
    InstallJob job(typeRow("ppd"), stick, {"office.ppd"});

    QCOMPARE(simclient::install(installPrinterDrivers, job), 1);

    QCOMPARE(simclient::readFile("/tmp/config/files/ppd/office.ppd"),
             QByteArray("installed earlier"));
    QVERIFY(simclient::printerDatabaseDrivers().contains(QStringLiteral("office.ppd")));
    QCOMPARE(simclient::calls().size(), 2);
}

void TestSystemInstallers::printerDriversWithoutDriverFolder()
{
    const QString folder = QStringLiteral("/tmp/config/files/ppd");
    QVERIFY(QDir(folder).removeRecursively());
    const auto restore = qScopeGuard([&] { QDir().mkpath(folder); });
    QVERIFY(QDir(QStringLiteral("/config")).removeRecursively());
    const QStringList files{"laser.ppd", "inkjet.ppd"};
    InstallJob job(typeRow("ppd"), simclient::makeStick(files), files);
    // The check plans for a client with its whole configuration tree: run without a plan.
    RealClient client;

    QCOMPARE(installPrinterDrivers(&job, client), 1);

    QVERIFY(!QFileInfo::exists(folder));
    QCOMPARE(simclient::calls(),
             (QStringList{"ppddb [/tmp/config/files/ppd] [/tmp/config/files/printdrivers.db]",
                          "freeze"}));
    // The make-path is absolute: it lands at the root, not under /tmp.
    QVERIFY(QFileInfo(QStringLiteral("/config/files/ppd")).isDir());
}

void TestSystemInstallers::jobsRefusedOrEmpty_data()
{
    QTest::addColumn<RoutineFunction>("routine");
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<int>("result");

    const QStringList none;
    QTest::newRow("update, two archives") << &installUpdate << QStringList{"a.tzupg", "b.tar"} << 0;
    QTest::newRow("update, none") << &installUpdate << none << 0;
    QTest::newRow("openvpn, two files") << &installOpenVpn << QStringList{"a.ovpn", "b.ovpn"} << 0;
    QTest::newRow("openvpn, none") << &installOpenVpn << none << 0;
    QTest::newRow("icon, two pictures") << &installIcon << QStringList{"a.png", "b.jpg"} << 0;
    QTest::newRow("icon, none") << &installIcon << none << 0;
    QTest::newRow("ScreenConnect, none") << &installScreenConnect << none << 1;
    QTest::newRow("disclaimer, none") << &installDisclaimer << none << 1;
}

// Nothing at all happens to the client: no command, no tool, no file.
void TestSystemInstallers::jobsRefusedOrEmpty()
{
    QFETCH(RoutineFunction, routine);
    QFETCH(QStringList, files);
    QFETCH(int, result);

    QVERIFY(writeFile("/boot/screenconnect.conf", "kept"));
    const Snapshot treeBefore = snapshot("/tmp/config/files");
    InstallJob job(typeRow("ppd"), simclient::makeStick(files), files);

    QCOMPARE(simclient::install(routine, job), result);

    QCOMPARE(simclient::shellLog(), QStringList{});
    QCOMPARE(simclient::calls(), QStringList{});
    QCOMPARE(snapshot("/tmp/config/files"), treeBefore);
    QVERIFY(QFileInfo::exists("/boot/screenconnect.conf"));
}

void TestSystemInstallers::firmwareUpdatePathWithBlanks()
{
    const QString stick = stickAt("/tmp/sticks/usb stick", {"fw update.tzupg"});
    InstallJob job(typeRow("update"), stick, {"fw update.tzupg"});

    QCOMPARE(simclient::install(installUpdate, job), 1);

    QCOMPARE(simclient::shellLog(), QStringList{"tar-upgrade \"" + stick + "/fw update.tzupg\""});
    // One argument, and no freeze.
    QCOMPARE(simclient::calls(), QStringList{"tar-upgrade [" + stick + "/fw update.tzupg]"});
}

void TestSystemInstallers::screenConnect_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QByteArray>("installedBefore");
    QTest::addColumn<QByteArray>("installedAfter");

    const QString package = QStringLiteral("ScreenConnect.ClientSetup.deb");
    QTest::newRow("fresh install") << QStringList{package} << QByteArray() << package.toUtf8();
    QTest::newRow("already installed")
        << QStringList{package} << QByteArray("earlier package") << QByteArray("earlier package");
    QTest::newRow("extra names ignored")
        << QStringList{package, "other.deb"} << QByteArray() << package.toUtf8();
}

void TestSystemInstallers::screenConnect()
{
    QFETCH(QStringList, files);
    QFETCH(QByteArray, installedBefore);
    QFETCH(QByteArray, installedAfter);

    const QString installed = QStringLiteral("/tmp/config/files/ScreenConnect.ClientSetup.deb");
    QFile::remove(installed);
    if (!installedBefore.isEmpty())
        QVERIFY(writeFile(installed, installedBefore));
    QVERIFY(writeFile("/boot/screenconnect-1.2/client.bin", "old client"));
    QVERIFY(writeFile("/boot/screenconnect.conf", "old settings"));
    QVERIFY(writeFile("/boot/ScreenConnect.ClientSetup.deb", "old package"));
    QVERIFY(writeFile("/boot/vmlinuz", "kernel"));
    const QString stick = simclient::makeStick(files);
    InstallJob job(typeRow("ScreenConnect"), stick, files);

    QCOMPARE(simclient::install(installScreenConnect, job), 1);

    QCOMPARE(simclient::readFile(installed), installedAfter);
    QVERIFY(!QFileInfo::exists("/tmp/config/files/other.deb"));
    QVERIFY(!QFileInfo::exists("/boot/screenconnect-1.2"));
    QVERIFY(!QFileInfo::exists("/boot/screenconnect.conf"));
    QVERIFY(!QFileInfo::exists("/boot/ScreenConnect.ClientSetup.deb"));
    QCOMPARE(simclient::readFile("/boot/vmlinuz"), QByteArray("kernel"));
    QCOMPARE(simclient::shellLog(),
             (QStringList{"rm -r /boot/screenconnect*", "rm -r /boot/*.deb", "freeze"}));
    QCOMPARE(simclient::calls(), QStringList{"freeze"});
}

void TestSystemInstallers::openVpn()
{
    const QString stick = simclient::makeStick({"office.ovpn"}, {"remote vpn.example 1194\n"});
    InstallJob job(typeRow("openvpn"), stick, {"office.ovpn"});

    QCOMPARE(simclient::install(installOpenVpn, job), 1);

    QCOMPARE(simclient::shellLog(),
             expand(
                 {
                     "mkdir -p /tmp/config/files/openvpn/client",
                     "mkdir -p /etc/openvpn/client",
                     R"(cp "{dir}/office.ovpn" /tmp/config/files/openvpn/client)",
                     "ln -s /tmp/config/files/openvpn/client/office.ovpn /etc/openvpn/client",
                     "ovpn2xml &",
                     "sleep 1",
                 },
                 stick));
    const QFileInfo link(QStringLiteral("/etc/openvpn/client/office.ovpn"));
    QVERIFY(link.isSymLink());
    QCOMPARE(link.symLinkTarget(), QStringLiteral("/tmp/config/files/openvpn/client/office.ovpn"));
    QCOMPARE(simclient::readFile(link.filePath()), QByteArray("remote vpn.example 1194\n"));
    QTRY_COMPARE(simclient::calls(), QStringList{"ovpn2xml"});
}

void TestSystemInstallers::iconWithBlankInItsName()
{
    const QString stick = simclient::makeStick({"company logo.png"});
    InstallJob job(typeRow("icon"), stick, {"company logo.png"});

    QCOMPARE(simclient::install(installIcon, job), 1);

    QCOMPARE(simclient::shellLog(),
             expand(
                 {
                     "mkdir -p /tmp/config/files/icons/",
                     R"(cp "{dir}/company logo.png" /tmp/config/files/icons/)",
                     "sleep 1",
                 },
                 stick));
    QCOMPARE(simclient::readFile("/tmp/config/files/icons/company logo.png"),
             QByteArray("company logo.png"));
    QCOMPARE(simclient::calls(), QStringList{});
}

void TestSystemInstallers::disclaimer_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QList<QByteArray>>("contents");

    QTest::newRow("html file") << QStringList{"notice.html"}
                               << QList<QByteArray>{"<p>Authorised use only.</p>"};
    QTest::newRow("only the first of several")
        << QStringList{"first.txt", "second.txt"}
        << QList<QByteArray>{"First notice.", "Second notice."};
}

void TestSystemInstallers::disclaimer()
{
    QFETCH(QStringList, files);
    QFETCH(QList<QByteArray>, contents);

    const QString stick = simclient::makeStick(files, contents);
    InstallJob job(typeRow("disclaimer"), stick, files);

    QCOMPARE(simclient::install(installDisclaimer, job), 1);

    QCOMPARE(
        simclient::shellLog(),
        (QStringList{
            QStringLiteral("cp %1/%2 /tmp/config/files/disclaimer.txt").arg(stick, files.first()),
            "getxmlconfig -wff user/system/desktop DISCLAIMER /tmp/config/files/disclaimer.txt",
            "freeze",
        }));
    QCOMPARE(simclient::readFile("/tmp/config/files/disclaimer.txt"), contents.first());
    QCOMPARE(simclient::storeValue("user/system/desktop", "DISCLAIMER"),
             QString::fromUtf8(contents.first()));
}

QTEST_GUILESS_MAIN(TestSystemInstallers)
#include "test_system_installers.moc"

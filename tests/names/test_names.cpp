#include "Dispatch.h"
#include "InstallJob.h"
#include "PackageTypes.h"
#include "PlannedRun.h"
#include "RcList.h"
#include "SimClient.h"
#include "TypeRow.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QtTest>

// File names and links from a stick that reach the client's root shell, installed on the
// simulated client and judged by effect: what the client's tools received, what landed where
// and under which name, that nothing was written outside the client's own places and that no
// file of the client was overwritten or copied into its configuration.
class TestNames : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void namesInstallWhole_data();
    void namesInstallWhole();
    void linksOffTheStick_data();
    void linksOffTheStick();

private:
    QSet<QString> baseline;
};

namespace {

const QString secretPath = QStringLiteral("/var/lib/usbi-client-secret");
const QByteArray secret = "the client's own secret\n";
// Files of the client that no installation may change.
const QMap<QString, QByteArray> clientFiles{
    {QStringLiteral("/tmp/config/files/client.png"), "the client's own picture\n"},
    {QStringLiteral("/tmp/config/files/cacerts/client.crt"), "the client's own certificate\n"},
    {QStringLiteral("/etc/openvpn/client/client.ovpn"), "the client's own VPN\n"},
    {secretPath, secret},
};
// Where installers may write, and where the simulated client and this test keep their own.
const QStringList writablePlaces{
    "/tmp/config",        "/etc/openvpn", "/boot",        "/config",      "/var/cache",
    "/tmp/proveidevents", "/tmp/sticks",  "/var/log/sim", "/var/lib/sim", "/var/lib/dax/config",
};

QStringList debugLines;

void captureDebug(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type == QtDebugMsg)
        debugLines.append(message);
}

bool writeFile(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
           file.write(content) == content.size();
}

bool writable(const QString &path)
{
    for (const QString &place : writablePlaces) {
        if (path == place || path.startsWith(place + QLatin1Char('/')) ||
            place.startsWith(path + QLatin1Char('/')))
            return true;
    }
    return false;
}

// An argument as the stand-ins record it.
QString arg(QString text)
{
    text.replace(QLatin1Char('\\'), QLatin1String("\\\\")).replace(QLatin1Char(']'), "\\]");
    return QLatin1String(" [") + text + QLatin1Char(']');
}

// The tools called, by name, sorted: background ones record in their own time.
QStringList toolsCalled()
{
    QStringList tools;
    for (const QString &line : simclient::calls())
        tools << line.section(QLatin1Char(' '), 0, 0);
    tools.sort();
    return tools;
}

QString md5(const QByteArray &bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Md5).toHex());
}

bool configurationHoldsSecret()
{
    for (const QString &root : {QStringLiteral("/tmp/config"), QStringLiteral("/var/lib/dax")}) {
        QDirIterator it(root, QDir::Files | QDir::Hidden | QDir::System,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            if (simclient::readFile(it.next()).contains(secret))
                return true;
        }
    }
    return false;
}

// Scans dir for every type, or dispatches job, and returns the debug lines written meanwhile.
template <typename Action> QStringList linesOf(Action action)
{
    debugLines.clear();
    const QtMessageHandler previous = qInstallMessageHandler(captureDebug);
    action();
    qInstallMessageHandler(previous);
    return debugLines;
}

const QList<QPair<QString, QString>> typesAndSuffixes{
    {"openvpn", ".ovpn"},   {"disclaimer", ".txt"}, {"rdpfile", ".rdp"},
    {"iwallpaper", ".png"}, {"cert", ".crt"},
};

} // namespace

void TestNames::initTestCase()
{
    simclient::requireSim();
    for (auto it = clientFiles.cbegin(); it != clientFiles.cend(); ++it)
        QVERIFY(writeFile(it.key(), it.value()));
    const QStringList changed = simclient::changedPaths();
    baseline = QSet<QString>(changed.cbegin(), changed.cend());
}

void TestNames::init()
{
    simclient::clearLogs();
}

void TestNames::cleanup()
{
    for (auto it = clientFiles.cbegin(); it != clientFiles.cend(); ++it)
        QCOMPARE(simclient::readFile(it.key()), it.value());
    QStringList outside;
    for (const QString &path : simclient::changedPaths()) {
        if (!baseline.contains(path) && !writable(path))
            outside << path;
    }
    QVERIFY2(outside.isEmpty(), qPrintable(outside.join(QLatin1String(", "))));
}

void TestNames::namesInstallWhole_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("dir");
    QTest::addColumn<QString>("name");

    const QStringList stems{
        "office", // ordinary: the client's own command, byte for byte
        "terms of use", "freeze ~bin #", "sh -f -t ~bin #", "*",
        "x #",          "it's (1) [a]?", "Übersicht ~root", "tab\there",
    };
    int row = 0;
    for (const auto &type : typesAndSuffixes) {
        for (const QString &stem : stems) {
            QString tag = stem;
            QTest::addRow("%s, %s", qPrintable(type.first), qPrintable(tag.replace('\t', "\\t")))
                << type.first << QStringLiteral("/tmp/sticks/names-%1").arg(++row)
                << stem + type.second;
        }
        QTest::addRow("%s, folder with a blank", qPrintable(type.first))
            << type.first << QStringLiteral("/tmp/sticks/my stick %1").arg(++row)
            << "office" + type.second;
    }
}

// Each name is offered, and installs under its whole name through each command that leaves a
// path bare (and through a certificate): the name never splits, expands, comments out the rest
// of the command or reaches a tool as an option.
void TestNames::namesInstallWhole()
{
    QFETCH(QString, type);
    QFETCH(QString, dir);
    QFETCH(QString, name);

    const QString path = dir + QLatin1Char('/') + name;
    const QByteArray content = "stick bytes of " + name.toUtf8() + '\n';
    QVERIFY(writeFile(path, content));
    // What "~bin" would have the shell copy over the client's own tool.
    QVERIFY(writeFile(dir + QStringLiteral("/freeze"), "#!/bin/sh\necho not the client's\n"));
    RcList list(dir);
    scanEveryType(list);
    QVERIFY(list.filesOfType(type).contains(name));

    InstallJob job(typeRow(type), dir, {name});
    simclient::install(installers::dispatch, job);

    if (name.startsWith(QLatin1String("office")) && !dir.contains(QLatin1Char(' ')))
        QVERIFY2(!simclient::shellLog().join(QLatin1Char('\n')).contains(QLatin1Char('\'')),
                 "an ordinary name is not quoted");
    switch (PackageTypes::find(type)->routine) {
    case InstallerRoutine::OpenVpn: {
        const QString stored = QStringLiteral("/tmp/config/files/openvpn/client/") + name;
        QCOMPARE(simclient::readFile(stored), content);
        const QFileInfo link(QStringLiteral("/etc/openvpn/client/") + name);
        QVERIFY(link.isSymLink());
        QCOMPARE(link.symLinkTarget(), stored);
        QTRY_COMPARE(toolsCalled(), QStringList{"ovpn2xml"});
        break;
    }
    case InstallerRoutine::Disclaimer:
        QCOMPARE(simclient::readFile(QStringLiteral("/tmp/config/files/disclaimer.txt")), content);
        QCOMPARE(simclient::storeValue("user/system/desktop", "DISCLAIMER"),
                 QString::fromUtf8(content));
        QCOMPARE(toolsCalled(), (QStringList{"freeze", "getxmlconfig"}));
        break;
    case InstallerRoutine::RdpFile:
        QCOMPARE(simclient::calls("rdpimport"), QStringList{"rdpimport" + arg(path)});
        QVERIFY(simclient::readFile("/var/lib/sim/rdpimport").endsWith(path.toUtf8() + '\n'));
        QTRY_COMPARE(toolsCalled(), (QStringList{"freeze", "rdp-desktop.sh", "rdpimport"}));
        break;
    case InstallerRoutine::ImprivataImage: {
        const QString copy = QStringLiteral("/tmp/config/files/") + name;
        QCOMPARE(simclient::readFile(copy), content);
        QCOMPARE(simclient::storeValue("user/software/imprivata", "Background"), copy);
        QCOMPARE(simclient::storeValue("user/software/imprivata", "Background_MD5"), md5(content));
        QCOMPARE(toolsCalled(), QStringList{});
        break;
    }
    case InstallerRoutine::Certificates: {
        QString blankFree = name;
        blankFree.remove(QLatin1Char(' '));
        QCOMPARE(simclient::calls("certs"),
                 (QStringList{"certs [install]" + arg(blankFree), "certs [register]"}));
        QCOMPARE(simclient::readFile("/var/lib/sim/certs/" + blankFree), content);
        break;
    }
    default:
        QFAIL("no check for this type");
    }
}

void TestNames::linksOffTheStick_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("kind");
    QTest::addColumn<bool>("offered");        // by the scan
    QTest::addColumn<QByteArray>("installs"); // what lands in the client's tree; empty: nothing
    QTest::addColumn<QString>("leadsTo");     // where the debug lines say the link leads

    for (const auto &type : {qMakePair(QStringLiteral("cert"), QStringLiteral(".crt")),
                             qMakePair(QStringLiteral("disclaimer"), QStringLiteral(".txt")),
                             qMakePair(QStringLiteral("wallpaper"), QStringLiteral(".jpg"))}) {
        const QByteArray keyBytes = type.first.toLatin1();
        const char *key = keyBytes.constData();
        QTest::addRow("%s, absolute link out", key)
            << type.first << "absolute" << false << QByteArray() << secretPath;
        QTest::addRow("%s, relative link out through ..", key)
            << type.first << "relative" << false << QByteArray() << secretPath;
        QTest::addRow("%s, chain of links out", key)
            << type.first << "chain" << false << QByteArray() << secretPath;
        QTest::addRow("%s, link loop", key)
            << type.first << "loop" << false << QByteArray() << "hop";
        QTest::addRow("%s, link to a file beside it", key)
            << type.first << "sibling" << true << QByteArray("sibling bytes\n") << QString();
        QTest::addRow("%s, ordinary file", key)
            << type.first << "ordinary" << true << QByteArray("ordinary bytes\n") << QString();
        QTest::addRow("%s, replaced by a link out after the scan", key)
            << type.first << "replaced" << true << QByteArray() << secretPath;
    }
    // A name beginning with ':' is a resource path to the toolkit unless joined to its folder.
    QTest::addRow("disclaimer, ':' name replaced by a link out after the scan")
        << "disclaimer"
        << ":replaced" << true << QByteArray() << secretPath;
}

// A link is offered, and installed, only while it ends at a regular file on the stick; one that
// leads anywhere else never brings a file of the client into its configuration.
void TestNames::linksOffTheStick()
{
    QFETCH(QString, type);
    QFETCH(QString, kind);
    QFETCH(bool, offered);
    QFETCH(QByteArray, installs);
    QFETCH(QString, leadsTo);

    const QString suffix = PackageTypes::find(type)->patternList().first().mid(1);
    const QString dir = simclient::makeStick({"real.bin"}, {"sibling bytes\n"});
    const QString name = kind + suffix;
    const QString path = dir + QLatin1Char('/') + name;
    const QString hop = dir + QStringLiteral("/hop");
    if (kind == QLatin1String("absolute"))
        QVERIFY(QFile::link(secretPath, path));
    else if (kind == QLatin1String("relative"))
        QVERIFY(QFile::link(QStringLiteral("../../..") + secretPath, path));
    else if (kind == QLatin1String("chain"))
        QVERIFY(QFile::link(secretPath, hop) && QFile::link(QStringLiteral("hop"), path));
    else if (kind == QLatin1String("loop"))
        QVERIFY(QFile::link(name, hop) && QFile::link(QStringLiteral("hop"), path));
    else if (kind == QLatin1String("sibling"))
        QVERIFY(QFile::link(QStringLiteral("real.bin"), path));
    else
        QVERIFY(writeFile(path, "ordinary bytes\n"));

    RcList list(dir);
    const QStringList scanLines = linesOf([&list] { scanEveryType(list); });
    QCOMPARE(list.filesOfType(type).contains(name), offered);
    if (!offered) {
        QCOMPARE(scanLines.size(), 1);
        QVERIFY2(scanLines.first().contains(name) && scanLines.first().contains(leadsTo),
                 qPrintable(scanLines.first()));
    }

    if (kind.endsWith(QLatin1String("replaced")))
        QVERIFY(QFile::remove(path) && QFile::link(secretPath, path));
    InstallJob job(typeRow(type), dir, {name});
    const QStringList installLines =
        linesOf([&job] { simclient::install(installers::dispatch, job); });

    QVERIFY(!configurationHoldsSecret());
    if (installs.isEmpty()) {
        QCOMPARE(simclient::shellLog(), QStringList());
        QCOMPARE(installLines.size(), 1);
        QVERIFY2(installLines.first().contains(name) && installLines.first().contains(leadsTo),
                 qPrintable(installLines.first()));
        return;
    }
    const QMap<QString, QString> destination{
        {"cert", "/tmp/config/files/cacerts/" + name},
        {"disclaimer", "/tmp/config/files/disclaimer.txt"},
        {"wallpaper", "/tmp/config/files/wallpapers/" + name},
    };
    QCOMPARE(simclient::readFile(destination.value(type)), installs);
}

QTEST_GUILESS_MAIN(TestNames)
#include "test_names.moc"

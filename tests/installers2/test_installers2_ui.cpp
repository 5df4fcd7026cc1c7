#include "Dispatch.h"
#include "InstallJob.h"
#include "MgrDlg.h"
#include "PackageTypes.h"
#include "RcList.h"
#include "SimClient.h"
#include "TypeRow.h"
#include "WidgetClicks.h"

#include <QCryptographicHash>
#include <QListWidget>
#include <QPushButton>
#include <QtTest>

// The second installer batch reached the way the program reaches it: through the dispatch by
// type key, and through the window (offscreen), clicked like an administrator would.
class TestInstallers2Ui : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { simclient::requireSim(); }
    void init() { simclient::clearLogs(); }
    void dispatchRunsTheRoutineOfEachType_data();
    void dispatchRunsTheRoutineOfEachType();
    void windowInstallsTheChosenWallpaper();
};

void TestInstallers2Ui::dispatchRunsTheRoutineOfEachType_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("firstCommand"); // %1: the stick
    QTest::addColumn<QString>("imprivataValue");

    QTest::newRow("screensaver") << "screensaver"
                                 << "s.jpg"
                                 << "freeze"
                                 << "";
    QTest::newRow("rdpfile") << "rdpfile"
                             << "c.rdp"
                             << "/usr/bin/rdpimport %1/c.rdp"
                             << "";
    QTest::newRow("desktop") << "desktop"
                             << "d.jpg"
                             << "mkdir -p /tmp/config/files/launchpad"
                             << "";
    QTest::newRow("wallpaper") << "wallpaper"
                               << "w.jpg"
                               << "rm /tmp/config/files/default_wp"
                               << "";
    const QString imprivataCopy = QStringLiteral("cp \"%1/i.png\" /tmp/config/files/i.png");
    QTest::newRow("iwallpaper") << "iwallpaper"
                                << "i.png" << imprivataCopy << "Background";
    QTest::newRow("iproxcard") << "iproxcard"
                               << "i.png" << imprivataCopy << "ProxCardImage";
    QTest::newRow("ilogo") << "ilogo"
                           << "i.png" << imprivataCopy << "CoBranding";
}

void TestInstallers2Ui::dispatchRunsTheRoutineOfEachType()
{
    QFETCH(QString, type);
    QFETCH(QString, file);
    QFETCH(QString, firstCommand);
    QFETCH(QString, imprivataValue);
    const QString dir = simclient::makeStick({file});
    InstallJob job(typeRow(type), dir, {file});
    QCOMPARE(installers::dispatch(&job), 1);
    QCOMPARE(simclient::shellLog().value(0), firstCommand.replace(QStringLiteral("%1"), dir));
    if (!imprivataValue.isEmpty())
        QCOMPARE(simclient::storeValue(QStringLiteral("user/software/imprivata"), imprivataValue),
                 QStringLiteral("/tmp/config/files/i.png"));
}

void TestInstallers2Ui::windowInstallsTheChosenWallpaper()
{
    const QString dir = simclient::makeStick({"a.bmp", "my wall.png", "z.txt"},
                                             {"first picture", "chosen picture", "text"});
    RcList list(dir);
    scanEveryType(list);

    MgrDlg window(&list);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    auto *types = window.findChild<QListWidget *>(QStringLiteral("lwType"));
    auto *files = window.findChild<QListWidget *>(QStringLiteral("lwSingle"));
    auto *install = window.findChild<QPushButton *>(QStringLiteral("bSInstall"));
    QVERIFY(types && files && install);

    QVERIFY(widgetclicks::clickItem(types, QStringLiteral("Wallpaper")));
    QTRY_VERIFY(files->isVisible());
    QVERIFY(widgetclicks::clickItem(files, QStringLiteral("my wall.png")));
    // Returns when the progress dialog has run the installation and closed itself.
    QTest::mouseClick(install, Qt::LeftButton);
    QTRY_VERIFY(window.isVisible());

    const QString copy = QStringLiteral("/tmp/config/files/wallpapers/my wall.png");
    QCOMPARE(simclient::readFile(copy), QByteArray("chosen picture"));
    const QString store = QStringLiteral("user/system/desktop");
    QCOMPARE(simclient::storeValue(store, QStringLiteral("WALLPAPER")), copy);
    QCOMPARE(simclient::storeValue(store, QStringLiteral("WP_MD5")),
             QString::fromLatin1(
                 QCryptographicHash::hash("chosen picture", QCryptographicHash::Md5).toHex()));
    QCOMPARE(simclient::calls(QStringLiteral("setwp")),
             QStringList{"setwp [/tmp/config/files/default_wp]"});
}

QTEST_MAIN(TestInstallers2Ui)
#include "test_installers2_ui.moc"

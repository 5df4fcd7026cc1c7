#include "Dispatch.h"
#include "InstallJob.h"
#include "MgrDlg.h"
#include "PlannedRun.h"
#include "RcList.h"
#include "SimClient.h"
#include "TypeRow.h"
#include "WidgetClicks.h"

#include <QApplication>
#include <QCheckBox>
#include <QCryptographicHash>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTableWidget>
#include <QtTest>

// Every package type reached the way the program reaches it: through the dispatch by the job's
// type, and through the window, clicked like an administrator would.
class TestDispatch : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { simclient::requireSim(); }
    void init() { simclient::clearLogs(); }
    void dispatchRunsTheRoutineOfEachType_data();
    void dispatchRunsTheRoutineOfEachType();
    void threeTickedDriversMakeOneInstallation();
    void windowInstallsTheChosenWallpaper();
};

namespace {

// Watches the progress dialogs shown, with the text they showed.
class DialogWatch : public QObject
{
public:
    QStringList texts;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Show && watched->inherits("InstallerDlg")) {
            const auto *label = watched->findChild<QLabel *>(QStringLiteral("lInstall"));
            texts.append(label ? label->text() : QStringLiteral("<no label>"));
        }
        return false;
    }
};

} // namespace

void TestDispatch::dispatchRunsTheRoutineOfEachType_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("result");
    QTest::addColumn<QString>("firstCommand"); // {dir}: the stick
    QTest::addColumn<QString>("imprivataValue");

    QTest::newRow("ppd") << "ppd"
                         << "p.ppd" << 1
                         << "ppddb /tmp/config/files/ppd /tmp/config/files/printdrivers.db"
                         << "";
    QTest::newRow("cert") << "cert"
                          << "c.pem" << 0 << R"(cp "{dir}/c.pem" "/tmp/config/files/cacerts/c.pem")"
                          << "";
    QTest::newRow("update") << "update"
                            << "u.tar" << 1 << R"(tar-upgrade "{dir}/u.tar")"
                            << "";
    QTest::newRow("ScreenConnect")
        << "ScreenConnect"
        << "ScreenConnect.ClientSetup.deb" << 1 << "rm -r /boot/screenconnect*"
        << "";
    QTest::newRow("openvpn") << "openvpn"
                             << "o.ovpn" << 1 << "mkdir -p /tmp/config/files/openvpn/client"
                             << "";
    QTest::newRow("icon") << "icon"
                          << "i.png" << 1 << "mkdir -p /tmp/config/files/icons/"
                          << "";
    QTest::newRow("disclaimer") << "disclaimer"
                                << "d.txt" << 1 << "cp {dir}/d.txt /tmp/config/files/disclaimer.txt"
                                << "";
    QTest::newRow("screensaver") << "screensaver"
                                 << "s.jpg" << 1 << "freeze"
                                 << "";
    QTest::newRow("rdpfile") << "rdpfile"
                             << "c.rdp" << 1 << "/usr/bin/rdpimport {dir}/c.rdp"
                             << "";
    QTest::newRow("desktop") << "desktop"
                             << "d.jpg" << 1 << "mkdir -p /tmp/config/files/launchpad"
                             << "";
    QTest::newRow("wallpaper") << "wallpaper"
                               << "w.jpg" << 1 << "rm /tmp/config/files/default_wp"
                               << "";
    const QString imprivataCopy = QStringLiteral(R"(cp "{dir}/i.png" /tmp/config/files/i.png)");
    QTest::newRow("iwallpaper") << "iwallpaper"
                                << "i.png" << 1 << imprivataCopy << "Background";
    QTest::newRow("iproxcard") << "iproxcard"
                               << "i.png" << 1 << imprivataCopy << "ProxCardImage";
    QTest::newRow("ilogo") << "ilogo"
                           << "i.png" << 1 << imprivataCopy << "CoBranding";
}

void TestDispatch::dispatchRunsTheRoutineOfEachType()
{
    QFETCH(QString, type);
    QFETCH(QString, file);
    QFETCH(int, result);
    QFETCH(QString, firstCommand);
    QFETCH(QString, imprivataValue);

    const QString stick = simclient::makeStick({file});
    InstallJob job(typeRow(type), stick, {file});
    QCOMPARE(simclient::install(installers::dispatch, job), result);
    QCOMPARE(simclient::shellLog().value(0), firstCommand.replace(QLatin1String("{dir}"), stick));
    if (!imprivataValue.isEmpty())
        QCOMPARE(simclient::storeValue(QStringLiteral("user/software/imprivata"), imprivataValue),
                 QStringLiteral("/tmp/config/files/i.png"));
}

void TestDispatch::threeTickedDriversMakeOneInstallation()
{
    const QStringList drivers{"Office Laser.ppd", "colour.ppd", "label.ppd"};
    const QString stick = simclient::makeStick(drivers + QStringList{"root.crt", "logo.png"});
    RcList list(stick);
    scanEveryType(list);
    MgrDlg window(&list);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));

    auto *types = window.findChild<QListWidget *>(QStringLiteral("lwType"));
    auto *table = window.findChild<QTableWidget *>(QStringLiteral("twMulti"));
    auto *install = window.findChild<QPushButton *>(QStringLiteral("bMInstall"));
    QVERIFY(types && table && install);
    QVERIFY(widgetclicks::clickItem(types, QStringLiteral("Printer Driver")));
    QVERIFY(install->isVisible());
    QCOMPARE(table->rowCount(), 3);
    for (int row = 0; row < 3; ++row) {
        auto *tick = qobject_cast<QCheckBox *>(table->cellWidget(row, 1));
        QVERIFY(tick && tick->isChecked());
    }

    DialogWatch watch;
    qApp->installEventFilter(&watch);
    // Returns when the modal progress dialog has closed again.
    QTest::mouseClick(install, Qt::LeftButton);
    qApp->removeEventFilter(&watch);

    QCOMPARE(watch.texts, QStringList{"Installing printer drivers..."});
    QVERIFY(window.isVisible());
    // One job: the database is rebuilt and the tree frozen once, after all three copies.
    QCOMPARE(
        simclient::shellLog(),
        (QStringList{"ppddb /tmp/config/files/ppd /tmp/config/files/printdrivers.db", "freeze"}));
    // And all three drivers landed in the driver folder and the database.
    const QStringList database = simclient::printerDatabaseDrivers();
    for (const QString &driver : drivers) {
        const QByteArray copy = simclient::readFile("/tmp/config/files/ppd/" + driver);
        QVERIFY2(copy == driver.toUtf8() && database.contains(driver), qPrintable(driver));
    }
}

void TestDispatch::windowInstallsTheChosenWallpaper()
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

QTEST_MAIN(TestDispatch)
#include "test_dispatch.moc"

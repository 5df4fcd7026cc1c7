#include "Dispatch.h"
#include "InstallJob.h"
#include "InstallerDlg.h"
#include "MgrDlg.h"
#include "PackageTypes.h"
#include "RcList.h"
#include "SimClient.h"
#include "TypeRow.h"
#include "WidgetClicks.h"

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QListWidget>
#include <QProcess>
#include <QPushButton>
#include <QTableWidget>
#include <QtTest>

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

// The first installer batch reached the way the program reaches it: through the dispatch by type
// key, and through the window on an X display of the simulated client (Xvfb), clicked like an
// administrator would.
class TestInstallers1Window : public QObject
{
    Q_OBJECT

private slots:
    void init() { simclient::clearLogs(); }
    void dispatchRunsTheRoutineOfEachType_data();
    void dispatchRunsTheRoutineOfEachType();
    void threeTickedDriversMakeOneInstallation();
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

void TestInstallers1Window::dispatchRunsTheRoutineOfEachType_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("result");
    QTest::addColumn<QString>("firstCommand"); // {dir}: the stick

    QTest::newRow("ppd") << "ppd"
                         << "p.ppd" << 1
                         << "ppddb /tmp/config/files/ppd /tmp/config/files/printdrivers.db";
    QTest::newRow("cert") << "cert"
                          << "c.pem" << 0
                          << R"(cp "{dir}/c.pem" "/tmp/config/files/cacerts/c.pem")";
    QTest::newRow("update") << "update"
                            << "u.tar" << 1 << R"(tar-upgrade "{dir}/u.tar")";
    QTest::newRow("ScreenConnect")
        << "ScreenConnect"
        << "ScreenConnect.ClientSetup.deb" << 1 << "rm -r /boot/screenconnect*";
    QTest::newRow("openvpn") << "openvpn"
                             << "o.ovpn" << 1 << "mkdir -p /tmp/config/files/openvpn/client";
    QTest::newRow("icon") << "icon"
                          << "i.png" << 1 << "mkdir -p /tmp/config/files/icons/";
    QTest::newRow("disclaimer") << "disclaimer"
                                << "d.txt" << 1
                                << "cp {dir}/d.txt /tmp/config/files/disclaimer.txt";
}

void TestInstallers1Window::dispatchRunsTheRoutineOfEachType()
{
    QFETCH(QString, type);
    QFETCH(QString, file);
    QFETCH(int, result);
    QFETCH(QString, firstCommand);

    const QString stick = simclient::makeStick({file});
    InstallJob job(typeRow(type), stick, {file});
    QCOMPARE(installers::dispatch(&job), result);

    const QStringList commands = simclient::shellLog();
    QVERIFY(!commands.isEmpty());
    QCOMPARE(commands.first(), firstCommand.replace(QLatin1String("{dir}"), stick));
}

void TestInstallers1Window::threeTickedDriversMakeOneInstallation()
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
    QCOMPARE(simclient::calls(),
             (QStringList{"ppddb [/tmp/config/files/ppd] [/tmp/config/files/printdrivers.db]",
                          "freeze"}));
    const QStringList database = simclient::printerDatabaseDrivers();
    for (const QString &driver : drivers) {
        QCOMPARE(simclient::readFile("/tmp/config/files/ppd/" + driver), driver.toUtf8());
        QVERIFY2(database.contains(driver), qPrintable(driver));
    }
}

namespace {

// An X server of the simulated client's own; it ends with the simulated client.
void startDisplay()
{
    const QString display = QStringLiteral(":42");
    if (!QProcess::startDetached(QStringLiteral("Xvfb"),
                                 {display, QStringLiteral("-nolisten"), QStringLiteral("tcp"),
                                  QStringLiteral("-screen"), QStringLiteral("0"),
                                  QStringLiteral("1024x768x24")})) {
        std::fprintf(stderr, "cannot start Xvfb (Debian package xvfb)\n");
        std::exit(1);
    }
    for (int i = 0; i < 200 && !QFileInfo::exists(QStringLiteral("/tmp/.X11-unix/X42")); ++i)
        usleep(50 * 1000);
    if (!QFileInfo::exists(QStringLiteral("/tmp/.X11-unix/X42"))) {
        std::fprintf(stderr, "Xvfb did not come up on %s\n", qPrintable(display));
        std::exit(1);
    }
    qputenv("DISPLAY", display.toLatin1());
    qputenv("QT_QPA_PLATFORM", "xcb");
}

} // namespace

int main(int argc, char **argv)
{
    simclient::requireSim();
    startDisplay();
    QApplication app(argc, argv);
    TestInstallers1Window test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_installers1_window.moc"

#include "Dispatch.h"
#include "InstallJob.h"
#include "InstallerDlg.h"
#include "MgrDlg.h"
#include "PackageTypes.h"
#include "RcList.h"
#include "SimClient.h"
#include "TypeRow.h"

#include <QAbstractButton>
#include <QCloseEvent>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QListWidget>
#include <QMutex>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QSemaphore>
#include <QStackedWidget>
#include <QTableWidget>
#include <QTimer>
#include <QtTest>

#include <functional>
#include <memory>
#include <utility>

namespace {

struct Recorder
{
    QMutex mutex;
    QList<InstallJob> jobs;
    QThread *worker = nullptr;
    bool hold = false;  // when set, the installation waits for release
    QSemaphore release; // one permit lets a held installation end
    QSemaphore entered; // one permit per installation started
} recorder;

// The routine the windows hand to the worker thread in place of the dispatch, so that the tests
// see every job the window hands over and decide when its installation ends.
int record(InstallJob *job, ClientAccess & /*client*/)
{
    bool hold;
    {
        QMutexLocker lock(&recorder.mutex);
        recorder.jobs.append(*job);
        recorder.worker = QThread::currentThread();
        hold = recorder.hold;
    }
    recorder.entered.release();
    if (hold)
        recorder.release.acquire();
    return 1;
}

QStringList messages; // every warning the toolkit printed during the current test
QtMessageHandler previousHandler = nullptr;

void recordWarnings(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (type != QtDebugMsg && type != QtInfoMsg)
        messages.append(text);
    previousHandler(type, context, text);
}

// The record start-up builds for a stick holding these files.
std::unique_ptr<RcList> scanStick(const QStringList &files)
{
    auto list = std::make_unique<RcList>(simclient::makeStick(files));
    scanEveryType(*list);
    return list;
}

template <typename T> T *child(QWidget *window, const char *name)
{
    return window->findChild<T *>(QLatin1String(name));
}

QStringList texts(const QListWidget *list)
{
    QStringList result;
    for (int row = 0; row < list->count(); ++row)
        result.append(list->item(row)->text());
    return result;
}

// Per row of the table: the file name, "" for a row without item, and whether its box is
// ticked ("-" for a row without box).
QStringList tableRows(const QTableWidget *table)
{
    QStringList result;
    for (int row = 0; row < table->rowCount(); ++row) {
        const QTableWidgetItem *item = table->item(row, 0);
        const auto *box = qobject_cast<QAbstractButton *>(table->cellWidget(row, 1));
        result.append((item ? item->text() : QString()) + QLatin1Char('|') +
                      (box ? (box->isChecked() ? QStringLiteral("x") : QStringLiteral(" "))
                           : QStringLiteral("-")));
    }
    return result;
}

void selectType(QWidget *window, const QString &name)
{
    auto *types = child<QListWidget>(window, "lwType");
    const QList<QListWidgetItem *> found = types->findItems(name, Qt::MatchExactly);
    QCOMPARE(found.size(), 1);
    types->setCurrentItem(found.first());
}

QList<InstallJob> takeJobs()
{
    QMutexLocker lock(&recorder.mutex);
    return std::exchange(recorder.jobs, {});
}

// Runs check inside the progress dialog's modal loop, then lets the held installation end.
void whileDialogRuns(const std::function<void(InstallerDlg *)> &check)
{
    QTimer::singleShot(0, [check] {
        auto *dialog = qobject_cast<InstallerDlg *>(QApplication::activeModalWidget());
        check(dialog);
        recorder.release.release();
    });
}

// Where a window of this size lands on the first screen: the centres of the available area
// and of the window coincide, a centre being ((left + right) / 2, (top + bottom) / 2) with
// right = left + width - 1.
QPoint centredPosition(const QSize &size)
{
    const QRect area = QGuiApplication::screens().first()->availableGeometry();
    const QPoint areaCentre((area.left() + area.left() + area.width() - 1) / 2,
                            (area.top() + area.top() + area.height() - 1) / 2);
    return areaCentre - QPoint((size.width() - 1) / 2, (size.height() - 1) / 2);
}

const QString styleSheetPath = QStringLiteral("/tmp/.config/default.css");

} // namespace

class TestUi : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void typeList_data();
    void typeList();
    void windowConventions();
    void styleSheet_data();
    void styleSheet();
    void multiPageTicksEveryFile();
    void surplusRowsStayEmpty();
    void nothingTickedOpensNoDialog();
    void installBuildsOneJob_data();
    void installBuildsOneJob();
    void windowReturnsUnchanged();
    void quitClosesTheWindow();

    void progressText_data();
    void progressText();
    void closeRefusedUntilCompletion();
    void fastInstallerStillClosesDialog();
};

void TestUi::initTestCase()
{
    simclient::requireSim();
    previousHandler = qInstallMessageHandler(recordWarnings);
}

void TestUi::init()
{
    messages.clear();
    takeJobs();
    recorder.hold = false;
    recorder.entered.tryAcquire(recorder.entered.available());
    recorder.release.tryAcquire(recorder.release.available());
}

void TestUi::cleanup()
{
    recorder.hold = false;
    // No "QThread: Destroyed while thread is still running", no failed connection.
    QCOMPARE(messages, QStringList());
}

void TestUi::typeList_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<QString>("page");
    QTest::addColumn<QStringList>("shown");

    QTest::newRow("jpg") << QStringList{"photo.jpg"}
                         << QStringList{"Desktop Image", "Icon", "Imprivata Wallpaper",
                                        "ScreenSaver", "Wallpaper"}
                         << "pSingle" << QStringList{"photo.jpg"};
    QTest::newRow("png") << QStringList{"logo.png"}
                         << QStringList{"Icon", "Imprivata Card Image", "Imprivata Login Image",
                                        "Imprivata Wallpaper", "Wallpaper"}
                         << "pSingle" << QStringList{"logo.png"};
    QTest::newRow("driver and certificate")
        << QStringList{"a.ppd", "b.cer"} << QStringList{"Certificate", "Printer Driver"} << "pMulti"
        << QStringList{"b.cer|x"};
    QTest::newRow("one rdp file") << QStringList{"Server.rdp"} << QStringList{"RDP file"}
                                  << "pSingle" << QStringList{"Server.rdp"};
    QTest::newRow("files sorted on the list")
        << QStringList{"b.ovpn", "B.ovpn", "a.ovpn"} << QStringList{"OpenVPN"} << "pSingle"
        << QStringList{"B.ovpn", "a.ovpn", "b.ovpn"};
    QTest::newRow("every type") << QStringList{"p.ppd",  "c.crt",
                                               "f.tar",  "ScreenConnect.ClientSetup.deb",
                                               "w.jpg",  "l.png",
                                               "v.ovpn", "r.rdp",
                                               "d.txt"}
                                << QStringList{"Certificate",
                                               "Desktop Image",
                                               "Disclaimer",
                                               "Firmware Update",
                                               "Icon",
                                               "Imprivata Card Image",
                                               "Imprivata Login Image",
                                               "Imprivata Wallpaper",
                                               "OpenVPN",
                                               "Printer Driver",
                                               "RDP file",
                                               "Screen Connect",
                                               "ScreenSaver",
                                               "Wallpaper"}
                                << "pMulti" << QStringList{"c.crt|x"};
}

void TestUi::typeList()
{
    QFETCH(QStringList, files);
    QFETCH(QStringList, rows);
    QFETCH(QString, page);
    QFETCH(QStringList, shown);

    const auto list = scanStick(files);
    MgrDlg window(list.get(), record);
    auto *types = child<QListWidget>(&window, "lwType");
    QCOMPARE(texts(types), rows);
    QCOMPARE(types->currentRow(), 0);
    for (int row = 0; row < types->count(); ++row) {
        const QListWidgetItem *item = types->item(row);
        const PackageType *type = &PackageTypes::all().at(item->data(Qt::UserRole).toUInt());
        QCOMPARE(type->name(), item->text());
        QVERIFY2(!item->icon().pixmap(32).isNull(), qPrintable(type->iconPath()));
    }

    auto *stack = child<QStackedWidget>(&window, "sw");
    QCOMPARE(stack->currentWidget()->objectName(), page);
    if (page == QLatin1String("pSingle")) {
        auto *single = child<QListWidget>(&window, "lwSingle");
        QCOMPARE(texts(single), shown);
        QCOMPARE(single->currentRow(), 0);
    } else {
        QCOMPARE(tableRows(child<QTableWidget>(&window, "twMulti")), shown);
    }
}

void TestUi::windowConventions()
{
    const auto list = scanStick({"photo.jpg"});
    MgrDlg window(list.get(), record);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));

    QCOMPARE(window.windowTitle(), QStringLiteral("USB Installer"));
    QCOMPARE(window.windowType(), Qt::Dialog);
    QCOMPARE(window.size(), QSize(653, 351));
    QCOMPARE(window.minimumSize(), QSize(653, 351));
    QCOMPARE(window.maximumSize(), QSize(653, 351));
    QCOMPARE(window.pos(), centredPosition(QSize(653, 351)));
    // The title row keeps the memory stick whatever type is current.
    selectType(&window, QStringLiteral("Wallpaper"));
    QVERIFY(!child<QLabel>(&window, "lIcon")->pixmap(Qt::ReturnByValue).isNull());
    QCOMPARE(child<QLabel>(&window, "lTitle")->text(), QStringLiteral("USB Installer"));
    QVERIFY(child<QLabel>(&window, "lTitle")->font().bold());

    InstallJob job(typeRow("wallpaper"), QStringLiteral("/nowhere"), {"photo.jpg"});
    InstallerDlg dialog(&job, record);
    QCOMPARE(dialog.windowTitle(), QStringLiteral("USB Installer"));
    QCOMPARE(dialog.windowType(), Qt::Dialog);
    QCOMPARE(dialog.minimumSize(), QSize(320, 90));
    QCOMPARE(dialog.maximumSize(), QSize(320, 90));
    QCOMPARE(dialog.pos(), centredPosition(QSize(320, 90)));
    QVERIFY(!child<QLabel>(&dialog, "lIInstaller")->pixmap(Qt::ReturnByValue).isNull());
    auto *bar = child<QProgressBar>(&dialog, "pbInstall");
    QCOMPARE(bar->minimum(), 0);
    QCOMPARE(bar->maximum(), 0);
}

void TestUi::styleSheet_data()
{
    QTest::addColumn<bool>("present");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("expected");

    QTest::newRow("missing") << false << QByteArray() << QString();
    QTest::newRow("plain") << true << QByteArray("QLabel { color: navy; }\n")
                           << QStringLiteral("QLabel { color: navy; }\n");
    QTest::newRow("up to the first zero byte")
        << true << QByteArray("QLabel { color: navy; }\0QLabel { color: red; }", 46)
        << QStringLiteral("QLabel { color: navy; }");
    QTest::newRow("latin-1") << true << QByteArray("/* caf\xe9 */ QWidget { }")
                             << QStringLiteral("/* caf\u00e9 */ QWidget { }");
}

void TestUi::styleSheet()
{
    QFETCH(bool, present);
    QFETCH(QByteArray, content);
    QFETCH(QString, expected);

    QFile::remove(styleSheetPath);
    if (present) {
        QDir().mkpath(QFileInfo(styleSheetPath).path());
        QFile file(styleSheetPath);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    const auto list = scanStick({"a.rdp"});
    MgrDlg window(list.get(), record);
    QCOMPARE(window.styleSheet(), expected);
    InstallJob job(typeRow("rdpfile"), list->dir, {"a.rdp"});
    InstallerDlg dialog(&job, record);
    QCOMPARE(dialog.styleSheet(), expected);
}

void TestUi::multiPageTicksEveryFile()
{
    const auto list = scanStick({"c.ppd", "A.ppd", "b.ppd"});
    MgrDlg window(list.get(), record);
    auto *table = child<QTableWidget>(&window, "twMulti");
    QCOMPARE(child<QStackedWidget>(&window, "sw")->currentWidget()->objectName(),
             QStringLiteral("pMulti"));
    const QStringList rows = tableRows(table);
    QCOMPARE(rows.size(), 3);
    QStringList names;
    for (const QString &row : rows) {
        QVERIFY2(row.endsWith(QLatin1String("|x")), qPrintable(row));
        names.append(row.section(QLatin1Char('|'), 0, 0));
    }
    names.sort();
    QCOMPARE(names, (QStringList{"A.ppd", "b.ppd", "c.ppd"}));
}

void TestUi::surplusRowsStayEmpty()
{
    const auto list =
        scanStick({"p1.ppd", "p2.ppd", "p3.ppd", "p4.ppd", "p5.ppd", "c1.cer", "c2.pem"});
    MgrDlg window(list.get(), record);
    window.show();
    selectType(&window, QStringLiteral("Printer Driver"));
    selectType(&window, QStringLiteral("Certificate"));

    auto *table = child<QTableWidget>(&window, "twMulti");
    const QStringList rows = tableRows(table);
    QCOMPARE(rows.size(), 5);
    QCOMPARE(rows.mid(2), (QStringList{"|-", "|-", "|-"}));
    QStringList filled = rows.mid(0, 2);
    filled.sort();
    QCOMPARE(filled, (QStringList{"c1.cer|x", "c2.pem|x"}));

    QTest::mouseClick(child<QPushButton>(&window, "bMInstall"), Qt::LeftButton);
    const QList<InstallJob> jobs = takeJobs();
    QCOMPARE(jobs.size(), 1);
    QCOMPARE(jobs.first().type, &typeRow("cert"));
    QCOMPARE(jobs.first().files, (QStringList{rows.at(0).section(QLatin1Char('|'), 0, 0),
                                              rows.at(1).section(QLatin1Char('|'), 0, 0)}));
}

void TestUi::nothingTickedOpensNoDialog()
{
    const auto list = scanStick({"a.crt", "b.crt"});
    MgrDlg window(list.get(), record);
    window.show();
    auto *table = child<QTableWidget>(&window, "twMulti");
    for (int row = 0; row < table->rowCount(); ++row)
        qobject_cast<QAbstractButton *>(table->cellWidget(row, 1))->setChecked(false);

    QTest::mouseClick(child<QPushButton>(&window, "bMInstall"), Qt::LeftButton);
    QVERIFY(takeJobs().isEmpty());
    QVERIFY(window.isVisible());
    QVERIFY(!QApplication::activeModalWidget());
}

void TestUi::installBuildsOneJob_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QString>("type"); // display name chosen in the type list
    QTest::addColumn<int>("untick");   // row of the table unticked, or the list row chosen
    QTest::addColumn<QString>("key");
    QTest::addColumn<QStringList>("chosen");

    QTest::newRow("three drivers")
        << QStringList{"x one.ppd", "y two.ppd", "z three.ppd"} << "Printer Driver" << -1 << "ppd"
        << QStringList{"x one.ppd", "y two.ppd", "z three.ppd"};
    QTest::newRow("two of three certificates")
        << QStringList{"a.cer", "b.der", "c.pfx"} << "Certificate" << 1 << "cert"
        << QStringList{"a.cer", "c.pfx"};
    QTest::newRow("picture as icon") << QStringList{"photo.jpg", "logo.png"} << "Icon" << 1
                                     << "icon" << QStringList{"photo.jpg"};
    QTest::newRow("picture as imprivata card")
        << QStringList{"photo.jpg", "logo.png"} << "Imprivata Card Image" << 0 << "iproxcard"
        << QStringList{"logo.png"};
    QTest::newRow("firmware") << QStringList{"fw-1.tar", "fw-2.tzupg"} << "Firmware Update" << 1
                              << "update" << QStringList{"fw-2.tzupg"};
}

void TestUi::installBuildsOneJob()
{
    QFETCH(QStringList, files);
    QFETCH(QString, type);
    QFETCH(int, untick);
    QFETCH(QString, key);
    QFETCH(QStringList, chosen);

    const auto list = scanStick(files);
    MgrDlg window(list.get(), record);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    selectType(&window, type);

    const bool multi = PackageTypes::find(key)->page == SelectionPage::Multi;
    QStringList inRowOrder;
    if (multi) {
        auto *table = child<QTableWidget>(&window, "twMulti");
        if (untick >= 0) {
            // Untick the box of the row whose file is not chosen.
            for (int row = 0; row < table->rowCount(); ++row) {
                if (!chosen.contains(table->item(row, 0)->text()))
                    qobject_cast<QAbstractButton *>(table->cellWidget(row, 1))->setChecked(false);
            }
        }
        for (const QString &row : tableRows(table)) {
            if (row.endsWith(QLatin1String("|x")))
                inRowOrder.append(row.section(QLatin1Char('|'), 0, 0));
        }
        QCOMPARE(inRowOrder.size(), chosen.size());
        QTest::mouseClick(child<QPushButton>(&window, "bMInstall"), Qt::LeftButton);
    } else {
        auto *single = child<QListWidget>(&window, "lwSingle");
        single->setCurrentRow(untick);
        inRowOrder = chosen;
        QCOMPARE(single->currentItem()->text(), chosen.first());
        QTest::mouseClick(child<QPushButton>(&window, "bSInstall"), Qt::LeftButton);
    }

    const QList<InstallJob> jobs = takeJobs();
    QCOMPARE(jobs.size(), 1);
    QCOMPARE(jobs.first().type, &typeRow(key));
    QCOMPARE(jobs.first().dir, list->dir);
    QCOMPARE(jobs.first().files, inRowOrder);
    QVERIFY(window.isVisible());
}

void TestUi::windowReturnsUnchanged()
{
    const auto list = scanStick({"a.ppd", "b.ppd", "c.ppd", "photo.jpg"});
    MgrDlg window(list.get(), record);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    auto *types = child<QListWidget>(&window, "lwType");
    auto *table = child<QTableWidget>(&window, "twMulti");
    selectType(&window, QStringLiteral("Printer Driver"));
    qobject_cast<QAbstractButton *>(table->cellWidget(1, 1))->setChecked(false);
    table->selectRow(2);
    const QStringList rowsBefore = tableRows(table);
    const int typeBefore = types->currentRow();

    recorder.hold = true;
    bool checked = false;
    whileDialogRuns([&](InstallerDlg *dialog) {
        checked = true;
        QVERIFY(dialog);
        QVERIFY(!window.isVisible());
        QVERIFY(dialog->isVisible());
        QCOMPARE(child<QLabel>(dialog, "lInstall")->text(),
                 QStringLiteral("Installing printer drivers..."));
    });
    QTest::mouseClick(child<QPushButton>(&window, "bMInstall"), Qt::LeftButton);
    QVERIFY(checked);
    QVERIFY(window.isVisible());
    QCOMPARE(types->currentRow(), typeBefore);
    QCOMPARE(tableRows(table), rowsBefore);
    QCOMPARE(table->currentRow(), 2);
    QVERIFY(!QApplication::activeModalWidget());
    const QList<InstallJob> first = takeJobs();
    QCOMPARE(first.size(), 1);

    // The same selection installs again.
    recorder.hold = false;
    QTest::mouseClick(child<QPushButton>(&window, "bMInstall"), Qt::LeftButton);
    const QList<InstallJob> second = takeJobs();
    QCOMPARE(second.size(), 1);
    QCOMPARE(second.first().files, first.first().files);

    // The single-selection page keeps its chosen row too.
    selectType(&window, QStringLiteral("Wallpaper"));
    auto *single = child<QListWidget>(&window, "lwSingle");
    QTest::mouseClick(child<QPushButton>(&window, "bSInstall"), Qt::LeftButton);
    QCOMPARE(takeJobs().size(), 1);
    QCOMPARE(types->currentItem()->text(), QStringLiteral("Wallpaper"));
    QCOMPARE(single->currentRow(), 0);
    QCOMPARE(texts(single), QStringList{"photo.jpg"});
}

void TestUi::quitClosesTheWindow()
{
    const auto list = scanStick({"a.rdp"});
    MgrDlg window(list.get(), record);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QTest::mouseClick(child<QPushButton>(&window, "bQuit"), Qt::LeftButton);
    QVERIFY(!window.isVisible());
    QVERIFY(takeJobs().isEmpty());
}

void TestUi::progressText_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("text");

    QTest::newRow("ppd") << "ppd"
                         << "Installing printer drivers...";
    QTest::newRow("cert") << "cert"
                          << "Installing certificates...";
    QTest::newRow("update") << "update"
                            << "Installing...";
    QTest::newRow("ScreenConnect") << "ScreenConnect"
                                   << "Installing Screen Connect...";
    QTest::newRow("wallpaper") << "wallpaper"
                               << "Installing wallpaper...";
    QTest::newRow("icon") << "icon"
                          << "Installing icon...";
    QTest::newRow("desktop") << "desktop"
                             << "Installing Desktop Image...";
    QTest::newRow("screensaver") << "screensaver"
                                 << "Screensaver image(s)...";
    QTest::newRow("iwallpaper") << "iwallpaper"
                                << "Installing Imprivata Wallpaper Image...";
    QTest::newRow("ilogo") << "ilogo"
                           << "Installing Imprivata Login Image...";
    QTest::newRow("iproxcard") << "iproxcard"
                               << "Installing Imprivata Card Image...";
    QTest::newRow("openvpn") << "openvpn"
                             << "Installing OpenVPN client config...";
    QTest::newRow("rdpfile") << "rdpfile"
                             << "Importing RDP file settings...";
    QTest::newRow("disclaimer") << "disclaimer"
                                << "Importing disclaimer...";
}

void TestUi::progressText()
{
    QFETCH(QString, key);
    QFETCH(QString, text);

    InstallJob job(typeRow(key), QStringLiteral("/nowhere"), {"file"});
    recorder.hold = true;
    bool checked = false;
    whileDialogRuns([&](InstallerDlg *dialog) {
        checked = true;
        QVERIFY(dialog);
        QCOMPARE(child<QLabel>(dialog, "lInstall")->text(), text);
    });
    InstallerDlg dialog(&job, record);
    dialog.exec();
    QVERIFY(checked);
    QCOMPARE(child<QLabel>(&dialog, "lInstall")->text(), QStringLiteral("Package(s) Installed"));
    QCOMPARE(takeJobs().size(), 1);
}

void TestUi::closeRefusedUntilCompletion()
{
    InstallJob job(typeRow("ppd"), QStringLiteral("/nowhere"), {"a.ppd", "b.ppd"});
    recorder.hold = true;
    bool checked = false;
    whileDialogRuns([&](InstallerDlg *dialog) {
        checked = true;
        QVERIFY(dialog);
        QVERIFY(!dialog->close());
        QCloseEvent byWindowManager;
        QApplication::sendEvent(dialog, &byWindowManager);
        QVERIFY(!byWindowManager.isAccepted());
        QTest::keyClick(dialog, Qt::Key_Escape);
        QVERIFY(dialog->isVisible());
        QCOMPARE(child<QLabel>(dialog, "lInstall")->text(),
                 QStringLiteral("Installing printer drivers..."));
    });
    InstallerDlg dialog(&job, record);
    dialog.exec();
    QVERIFY(checked);
    QVERIFY(!dialog.isVisible());
    QCOMPARE(child<QLabel>(&dialog, "lInstall")->text(), QStringLiteral("Package(s) Installed"));
    const QList<InstallJob> jobs = takeJobs();
    QCOMPARE(jobs.size(), 1);
    QCOMPARE(jobs.first().files, (QStringList{"a.ppd", "b.ppd"}));
}

void TestUi::fastInstallerStillClosesDialog()
{
    InstallJob job(typeRow("disclaimer"), QStringLiteral("/nowhere"), {"a.txt"});
    InstallerDlg dialog(&job, record);
    // Let the worker run to its end before the modal loop starts: its completion is then
    // already waiting in the queue.
    recorder.entered.acquire();
    QThread *worker;
    {
        QMutexLocker lock(&recorder.mutex);
        worker = recorder.worker;
    }
    worker->wait();
    dialog.exec();
    QVERIFY(!dialog.isVisible());
    QCOMPARE(child<QLabel>(&dialog, "lInstall")->text(), QStringLiteral("Package(s) Installed"));
    QCOMPARE(takeJobs().size(), 1);
}

QTEST_MAIN(TestUi)
#include "test_ui.moc"

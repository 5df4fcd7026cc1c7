#include "ClientAccess.h"
#include "Dispatch.h"
#include "InstallJob.h"
#include "InstallerDlg.h"
#include "MgrDlg.h"
#include "PackageTypes.h"
#include "RcList.h"
#include "WindowSetup.h"

#include <QAbstractButton>
#include <QDir>
#include <QHash>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QScreen>
#include <QSemaphore>
#include <QStackedWidget>
#include <QTableWidget>
#include <QTimer>
#include <QtTest>

#include <algorithm>
#include <atomic>
#include <functional>
#include <iterator>
#include <memory>
#include <utility>

// The main window and the progress dialog, driven like an administrator drives them, inside the
// simulated client.
namespace {

// Stands between the worker and the installers: counts the installations, runs them (or not, or
// in their place a copy that cannot be made and a tool that exits 3) and, while hold is set,
// keeps each one from ending until the test releases it.
struct Gate
{
    std::atomic<int> runs{0};
    std::atomic<bool> install{true}, fail{false}, hold{false};
    std::atomic<QThread *> worker{nullptr};
    QSemaphore started, release;
} gate;

int gated(InstallJob *job, ClientAccess &client)
{
    const int result = gate.install ? installers::dispatch(job, client) : 1;
    if (gate.fail) {
        client.copyFile(QStringLiteral("/nowhere/beach.jpg"),
                        QStringLiteral("/tmp/config/files/wallpapers/beach.jpg"));
        client.run(StepKind::ClientTool, QStringLiteral("exit 3"));
    }
    ++gate.runs;
    gate.worker = QThread::currentThread();
    gate.started.release();
    if (gate.hold)
        gate.release.acquire();
    return result;
}

QStringList split(const QString &list) // "a,b" as {"a", "b"}, "" as {}
{
    return list.split(QLatin1Char(','), Qt::SkipEmptyParts);
}

template <typename T> T *child(QWidget *window, const char *name)
{
    return window->findChild<T *>(QLatin1String(name));
}

// The list or table of files on the window's current page.
QAbstractItemView *filesView(QWidget *window)
{
    return child<QStackedWidget>(window, "sw")->currentWidget()->findChild<QAbstractItemView *>();
}

// What a list shows; for the table, per row: the file name ("" for none), "|", then "x" ticked,
// " " not ticked, "-" no box.
QStringList rows(QAbstractItemView *view)
{
    QStringList result;
    auto *table = qobject_cast<QTableWidget *>(view);
    for (int row = 0; row < view->model()->rowCount(); ++row) {
        const auto *box =
            table ? qobject_cast<QAbstractButton *>(table->cellWidget(row, 1)) : nullptr;
        result.append(view->model()->index(row, 0).data().toString() +
                      QLatin1String(!table             ? ""
                                    : !box             ? "|-"
                                    : box->isChecked() ? "|x"
                                                       : "| "));
    }
    return result;
}

// Clicks as a user would, once the window has settled: the row of a list showing text, else the
// middle of a button or the box of a check box.
void click(QWidget *widget, const QString &text = QString())
{
    QCoreApplication::processEvents(); // lets views place their rows and cell widgets
    QVERIFY(widget->isVisible());
    QPoint at = widget->rect().center();
    if (auto *list = qobject_cast<QListWidget *>(widget)) {
        const QList<QListWidgetItem *> found = list->findItems(text, Qt::MatchExactly);
        QCOMPARE(found.size(), 1);
        widget = list->viewport();
        at = list->visualItemRect(found.first()).center();
    } else if (!qobject_cast<QPushButton *>(widget)) {
        at.setX(widget->style()->pixelMetric(QStyle::PM_IndicatorWidth) / 2 + 1);
    }
    QTest::mouseClick(widget, Qt::LeftButton, {}, at);
}

// Once the progress dialog shows: runs check inside its modal loop, lets the held installation
// end and waits for the dialog to close itself; one that does not is closed here so that the
// test goes on.
struct DialogWatch : QObject
{
    explicit DialogWatch(std::function<void(QDialog *)> check) : check(std::move(check))
    {
        qApp->installEventFilter(this);
    }
    bool shown = false;
    const std::function<void(QDialog *)> check;

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        auto *dialog = qobject_cast<InstallerDlg *>(watched);
        if (!dialog || event->type() != QEvent::Show || std::exchange(shown, true))
            return false;
        QTimer::singleShot(0, this, [this, dialog] {
            check(dialog);
            gate.release.release();
            if (!QTest::qWaitFor([dialog] { return !dialog->isVisible(); })) {
                dialog->done(QDialog::Rejected);
                QFAIL("the progress dialog stayed open after its installation");
            }
        });
        return false;
    }
};

// Where a window of this size lands: its centre on the centre of the first screen's available
// area, a centre being ((left + right) / 2, (top + bottom) / 2) with right = left + width - 1.
QPoint centredPosition(const QSize &size)
{
    const QRect area = QGuiApplication::screens().first()->availableGeometry();
    return QPoint((2 * area.left() + area.width() - 1) / 2 - (size.width() - 1) / 2,
                  (2 * area.top() + area.height() - 1) / 2 - (size.height() - 1) / 2);
}

const PackageType &typeOf(const QListWidgetItem *item)
{
    return PackageTypes::all().at(item->data(Qt::UserRole).toUInt());
}

// The scan of a fresh stick holding these files, each with its own name as content.
std::unique_ptr<RcList> scanStick(const QStringList &files)
{
    static int sticks = 0;
    const QString dir = QStringLiteral("/tmp/sticks/%1").arg(++sticks);
    QDir().mkpath(dir);
    for (const QString &name : files) {
        QFile file(dir + QLatin1Char('/') + name);
        if (file.open(QIODevice::WriteOnly))
            file.write(name.toUtf8());
    }
    auto list = std::make_unique<RcList>(dir);
    scanEveryType(*list);
    return list;
}

// A key as a user types it; "Name*" is the repeat of a held key. "Double" double-clicks the
// current row of the focused view instead.
void press(QWidget *target, const QString &token)
{
    static const QHash<QString, Qt::Key> keys = {
        {"Tab", Qt::Key_Tab},       {"Backtab", Qt::Key_Backtab}, {"Space", Qt::Key_Space},
        {"Return", Qt::Key_Return}, {"Enter", Qt::Key_Enter},     {"Escape", Qt::Key_Escape},
        {"Down", Qt::Key_Down}};
    if (token == QLatin1String("Double")) {
        auto *view = qobject_cast<QAbstractItemView *>(target);
        QVERIFY(view);
        QTest::mouseDClick(view->viewport(), Qt::LeftButton, {},
                           view->visualRect(view->currentIndex()).center());
        return;
    }
    const bool held = token.endsWith(QLatin1Char('*'));
    const Qt::Key key = keys.value(held ? token.chopped(1) : token);
    QVERIFY2(key, qPrintable(token));
    const QString text = key == Qt::Key_Space ? QStringLiteral(" ") : QString();
    if (!held) {
        QTest::keyClick(target, key);
        return;
    }
    for (const QEvent::Type kind : {QEvent::KeyRelease, QEvent::KeyPress}) {
        QKeyEvent event(kind, key, Qt::NoModifier, text, true);
        QApplication::sendEvent(target, &event);
    }
}

// The outermost pixels of a widget, its frame, as the window shows them.
QImage edge(QWidget *window, QWidget *widget)
{
    const QRect area(widget->mapTo(window, QPoint(0, 0)), widget->size());
    QImage image = window->grab(area).toImage();
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_Clear);
    painter.fillRect(image.rect().adjusted(1, 1, -1, -1), Qt::transparent);
    return image;
}
} // namespace

class TestWindows : public QObject
{
    Q_OBJECT

public:
    // As the program starts: scaled on screens with a scale factor (QT_SCALE_FACTOR=2).
    static void initMain() { windowsetup::enableHighDpi(); }

private slots:
    // Installers run for real: never outside the simulated client (sim/run).
    void initTestCase() { QVERIFY2(qgetenv("USBI_SIM") == "1", "run inside sim/run"); }

    void init()
    {
        QFile::resize(qEnvironmentVariable("SIM_CALL_LOG"), 0); // the tools' calls of this case
        gate.runs = 0;
        gate.install = true;
        gate.fail = false;
        gate.hold = false;
        gate.started.tryAcquire(gate.started.available());
        gate.release.tryAcquire(gate.release.available());
    }

    void typeListConventionsAndQuit()
    {
        // The client's style sheet: read as Latin-1, up to the first zero byte.
        QFile css(QStringLiteral("/tmp/.config/default.css"));
        QVERIFY(QDir().mkpath(QStringLiteral("/tmp/.config")) && css.open(QIODevice::WriteOnly));
        css.write(QByteArray("QLabel { } /* caf\xe9 */\0QLabel { color: red; }", 44));
        css.close();
        const auto list = scanStick({"p.ppd", "c.crt", "f.tar", "ScreenConnect.ClientSetup.deb",
                                     "w.jpg", "l.png", "v.ovpn", "r.rdp", "d.txt"});
        MgrDlg window(list.get(), gated);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        auto *types = child<QListWidget>(&window, "lwType");
        QCOMPARE(rows(types).join(QLatin1Char(',')),
                 QStringLiteral("Certificate,Desktop Image,Disclaimer,Firmware Update,Icon,"
                                "Imprivata Card Image,Imprivata Login Image,Imprivata Wallpaper,"
                                "OpenVPN,Printer Driver,RDP file,Screen Connect,ScreenSaver,"
                                "Wallpaper"));
        QCOMPARE(types->currentRow(), 0);
        for (int row = 0; row < types->count(); ++row) {
            const PackageType &type = typeOf(types->item(row));
            QCOMPARE(type.name(), types->item(row)->text());
            QVERIFY2(!types->item(row)->icon().pixmap(32).isNull(), qPrintable(type.iconPath()));
        }
        // The title row keeps the memory stick whatever type is current.
        click(types, QStringLiteral("Wallpaper"));
        QVERIFY(!child<QLabel>(&window, "lIcon")->pixmap(Qt::ReturnByValue).isNull());
        QCOMPARE(child<QLabel>(&window, "lTitle")->text(), QStringLiteral("USB Installer"));
        QVERIFY(child<QLabel>(&window, "lTitle")->font().bold());

        gate.install = false;
        InstallJob job(*PackageTypes::find(QStringLiteral("wallpaper")), list->dir, {"w.jpg"});
        InstallerDlg dialog(&job, gated);
        QVERIFY(!child<QLabel>(&dialog, "lIInstaller")->pixmap(Qt::ReturnByValue).isNull());
        QCOMPARE(child<QProgressBar>(&dialog, "pbInstall")->maximum(), 0); // busy, no percentage
        css.remove();
        const std::pair<QWidget *, QSize> both[] = {{&window, {653, 351}}, {&dialog, {320, 90}}};
        for (const auto &[shown, size] : both) {
            QCOMPARE(shown->windowTitle(), QStringLiteral("USB Installer"));
            QCOMPARE(shown->windowType(), Qt::Dialog);
            QCOMPARE(shown->minimumSize(), size);
            QCOMPARE(shown->maximumSize(), size);
            QCOMPARE(shown->pos(), centredPosition(size));
            QCOMPARE(shown->styleSheet(), QStringLiteral("QLabel { } /* caf\u00e9 */"));
        }

        // A fast installer: its worker ends before the dialog shows, the completion waiting.
        QVERIFY(gate.started.tryAcquire(1, 60000));
        gate.worker.load()->wait();
        dialog.show();
        QVERIFY(QTest::qWaitFor([&dialog] { return !dialog.isVisible(); }));
        QCOMPARE(child<QLabel>(&dialog, "lInstall")->text(),
                 QStringLiteral("Package(s) Installed"));

        click(child<QPushButton>(&window, "bQuit"));
        QVERIFY(!window.isVisible());
    }

    void install_data()
    {
        QTest::addColumn<QString>("files");
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("chosen"); // left ticked, or the one row clicked
        QTest::addColumn<QString>("folder"); // where in the client's tree the chosen files land
        QTest::addColumn<QString>("once");   // a tool the one installation runs once
        QTest::addColumn<QString>("typed");  // typed into every file's row before installing
        const auto add = [](const char *name, const QString &files, const QString &type,
                            const QString &chosen, const QString &folder, const QString &once,
                            const QString &typed = QString()) {
            QTest::newRow(name) << files << type << chosen << folder << once << typed;
        };

        add("three ticked drivers make one installation", "x one.ppd,y two.ppd,z three.ppd,r.crt",
            "Printer Driver", "x one.ppd,y two.ppd,z three.ppd", "ppd", "ppddb");
        // Printer Driver, shown before, leaves two surplus rows on the certificates' page.
        add("ticked certificates only", "p1.ppd,p2.ppd,p3.ppd,p4.ppd,p5.ppd,c1.cer,c2.pem,c3.der",
            "Certificate", "c1.cer,c3.der", "cacerts", "freeze");
        add("the chosen wallpaper", "my wall.png,Z.bmp,a.bmp,z.txt", "Wallpaper", "my wall.png",
            "wallpapers", "setwp");
        add("nothing ticked opens no dialog", "n1.crt,n2.crt", "Certificate", "", "cacerts", "");
        // F2 and a double-click on a name, a command typed, Tab: the scan's names install.
        const QString command = QStringLiteral("x\";id>/tmp/typed;\""); // no Space: it ticks
        add("a command typed into the table", "e1.crt,e2.crt", "Certificate", "e1.crt,e2.crt",
            "cacerts", "freeze", command);
        add("a command typed into the list", "t1.png", "Icon", "t1.png", "icons", "", command);
    }

    void install()
    {
        QFETCH(QString, files);
        QFETCH(QString, type);
        QFETCH(QString, chosen);
        QFETCH(QString, folder);
        QFETCH(QString, once);
        QFETCH(QString, typed);

        const auto list = scanStick(split(files));
        MgrDlg window(list.get(), gated);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QCOMPARE(window.styleSheet(), QString()); // the client has none
        auto *types = child<QListWidget>(&window, "lwType");
        int most = 0; // rows the table needs for the type with the most files
        for (int row = types->count() - 1; row >= 0; --row) {
            click(types, types->item(row)->text());
            const PackageType &visited = typeOf(types->item(row));
            if (visited.page == SelectionPage::Multi)
                most = std::max(most, int(list->filesOfType(visited.typeKey()).size()));
        }
        click(types, type);
        const PackageType &shownType = typeOf(types->currentItem());
        const int filled = list->filesOfType(shownType.typeKey()).size();

        QAbstractItemView *view = filesView(&window);
        if (auto *table = qobject_cast<QTableWidget *>(view)) {
            // Every file ticked; the rows a type with more files left behind stay empty.
            const QStringList shown = rows(table);
            QCOMPARE(shown.size(), most);
            QCOMPARE(shown.filter(QStringLiteral("|x")).size(), filled);
            QCOMPARE(shown.mid(filled).join(QString()),
                     QStringLiteral("|-").repeated(shown.size() - filled));
            for (int row = 0; row < filled; ++row) {
                if (!split(chosen).contains(table->item(row, 0)->text()))
                    click(table->cellWidget(row, 1));
            }
        } else {
            QStringList sorted = rows(view); // by code point, as in the C locale
            sorted.sort();
            QCOMPARE(rows(view), sorted);
            QCOMPARE(sorted.size(), filled);
            QCOMPARE(view->currentIndex().row(), 0);
            click(view, chosen);
        }
        const QStringList before = rows(view);
        for (int row = 0; !typed.isEmpty() && row < filled; ++row) {
            const QModelIndex index = view->model()->index(row, 0);
            view->setCurrentIndex(index);
            QTest::keyClick(view, Qt::Key_F2);
            QTest::mouseDClick(view->viewport(), Qt::LeftButton, {},
                               view->visualRect(index).center());
            QVERIFY(!qobject_cast<QLineEdit *>(QApplication::focusWidget())); // no editor
            QTest::keyClicks(QApplication::focusWidget(), typed);
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab); // ends an edit
        }
        if (!typed.isEmpty())
            QCOMPARE(rows(view), before);

        gate.hold = true;
        DialogWatch watch([&](QDialog *dialog) {
            QVERIFY(!window.isVisible());
            QCOMPARE(child<QLabel>(dialog, "lInstall")->text(), shownType.progressLabel());
        });
        // Returns when the modal progress dialog has closed again.
        click(child<QPushButton>(&window,
                                 qobject_cast<QTableWidget *>(view) ? "bMInstall" : "bSInstall"));
        QCOMPARE(watch.shown, !chosen.isEmpty());
        QVERIFY(!QFile::exists(QStringLiteral("/tmp/typed")));
        QCOMPARE(gate.runs.load(), chosen.isEmpty() ? 0 : 1);
        QVERIFY(window.isVisible());
        QCOMPARE(rows(view), before);

        // Only the chosen files landed, each in the client's tree under its own name.
        const QString tree = QStringLiteral("/tmp/config/files/") + folder + QLatin1Char('/');
        for (const QString &file : split(files)) {
            QFile copy(tree + file);
            const bool landed = copy.open(QIODevice::ReadOnly);
            QVERIFY2(landed == split(chosen).contains(file), qPrintable(file));
            QVERIFY(!landed || copy.readAll() == file.toUtf8());
        }
        QFile log(qEnvironmentVariable("SIM_CALL_LOG")); // "tool [argument] ...", one a line
        QVERIFY(log.open(QIODevice::ReadOnly));
        const QStringList calls = QString::fromUtf8(log.readAll()).split(QLatin1Char('\n'));
        if (!once.isEmpty())
            QCOMPARE(calls.filter(QRegularExpression(QStringLiteral("^%1( |$)").arg(once))).size(),
                     1);
    }

    void keyboard_data()
    {
        QTest::addColumn<QString>("files");
        QTest::addColumn<QString>("type");   // chosen with the mouse before the keys
        QTest::addColumn<QString>("keys");   // typed where the focus is
        QTest::addColumn<QString>("focus");  // at the open, then after each key ("" closed)
        QTest::addColumn<QString>("landed"); // files installed into the client's tree
        QTest::addColumn<QString>("ticked"); // the table's ticked files at the end, if shown
        const auto add = [](const char *name, const char *files, const char *type, const char *keys,
                            const char *focus, const char *landed, const char *ticked = "") {
            QTest::newRow(name) << files << type << keys << focus << landed << ticked;
        };
        const char *certs = "c1.crt,c2.crt,c3.crt,w.jpg";
        add("Tab leaves the table", certs, "Certificate", "Tab Tab Tab Tab Backtab",
            "lwType,twMulti,bMInstall,bQuit,lwType,bQuit", "", "c1.crt,c2.crt,c3.crt");
        add("the file list after the table", certs, "Wallpaper", "Tab Tab Tab",
            "lwType,lwSingle,bSInstall,bQuit", "");
        add("Space unticks and ticks, Return installs the ticked", certs, "Certificate",
            "Tab Space Down Space Space Down Space Return",
            "lwType,twMulti,twMulti,twMulti,twMulti,twMulti,twMulti,twMulti,lwType", "c2.crt",
            "c2.crt");
        add("a held Space ticks once", certs, "Certificate", "Tab Space Space* Space*",
            "lwType,twMulti,twMulti,twMulti,twMulti", "", "c2.crt,c3.crt");
        add("a held Return installs once", certs, "Certificate", "Tab Return Return* Return*",
            "lwType,twMulti,lwType,lwType,lwType", "c1.crt,c2.crt,c3.crt", "c1.crt,c2.crt,c3.crt");
        add("Enter in the file list installs its current file", "a.jpg,b.jpg", "Wallpaper",
            "Tab Down Enter", "lwType,lwSingle,lwSingle,lwType", "b.jpg");
        add("a double-click does not install", "a.jpg,b.jpg", "Wallpaper", "Tab Double",
            "lwType,lwSingle,lwSingle", "");
        add("Return on the type list or on Close does nothing", certs, "Certificate",
            "Return Backtab Return", "lwType,lwType,bQuit,bQuit", "", "c1.crt,c2.crt,c3.crt");
        add("Escape closes", certs, "Wallpaper", "Tab Escape", "lwType,lwSingle,", "");
        add("a held Escape before it", certs, "Wallpaper", "Tab Escape*",
            "lwType,lwSingle,lwSingle", "");
    }

    void keyboard()
    {
        QFETCH(QString, files);
        QFETCH(QString, type);
        QFETCH(QString, keys);
        QFETCH(QString, focus);
        QFETCH(QString, landed);
        QFETCH(QString, ticked);

        const QString tree = QStringLiteral("/tmp/config/files/");
        const auto landedAs = [&tree](const QString &file) {
            return tree + (file.endsWith(QLatin1String(".crt")) ? "cacerts/" : "wallpapers/") +
                   file;
        };
        for (const QString &file : split(files))
            QFile::remove(landedAs(file)); // put there by an earlier case
        const auto list = scanStick(split(files));
        MgrDlg window(list.get(), gated);
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        const auto focused = [&window] {
            return window.isVisible() ? window.focusWidget()->objectName() : QString();
        };
        QStringList path{focused()};
        click(child<QListWidget>(&window, "lwType"), type);

        gate.hold = true;
        DialogWatch watch([](QDialog *dialog) {
            // The dialog ignores the held key, and Escape, while its installation runs.
            press(dialog, QStringLiteral("Return*"));
            press(dialog, QStringLiteral("Escape"));
            QVERIFY(dialog->isVisible());
        });
        for (const QString &key : keys.split(QLatin1Char(' ')))
            if (window.isVisible()) {
                press(window.focusWidget(), key);
                path.append(focused());
            }
        QCOMPARE(path.join(QLatin1Char(',')), focus);
        QCOMPARE(gate.runs.load(), landed.isEmpty() ? 0 : 1);

        for (const QString &file : split(files))
            QVERIFY2(QFile::exists(landedAs(file)) == split(landed).contains(file),
                     qPrintable(file));
        if (type == QLatin1String("Certificate")) {
            QStringList shown = rows(child<QTableWidget>(&window, "twMulti")).filter("|x");
            shown.replaceInStrings(QStringLiteral("|x"), QString());
            QCOMPARE(shown.join(QLatin1Char(',')), ticked);
        }
    }

    // Under the client's style sheet too, each stop of the tab order shows that it has the focus.
    void focusShows_data()
    {
        QTest::addColumn<QByteArray>("sheet");
        QTest::newRow("the toolkit's look") << QByteArray();
        QTest::newRow("a client's style sheet")
            << QByteArray("QWidget { font-size: 10pt; background: white; }\n"
                          "QPushButton, QAbstractItemView { border: 1px solid gray; }");
    }

    void focusShows()
    {
        QFETCH(QByteArray, sheet);
        QFile css(QStringLiteral("/tmp/.config/default.css"));
        QVERIFY(QDir().mkpath(QStringLiteral("/tmp/.config")) && css.open(QIODevice::WriteOnly));
        css.write(sheet);
        css.close();
        const auto removeSheet = qScopeGuard([&css] { css.remove(); });
        const auto list = scanStick({"c1.crt", "w.jpg"});
        MgrDlg window(list.get(), gated);
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        for (const QString &page : {QStringLiteral("Certificate"), QStringLiteral("Wallpaper")}) {
            click(child<QListWidget>(&window, "lwType"), page);
            press(window.focusWidget(), QStringLiteral("Tab"));
            for (int stop = 0; stop < 4; ++stop) {
                QWidget *left = window.focusWidget();
                const QImage shown = edge(&window, left);
                press(left, QStringLiteral("Tab"));
                QVERIFY(window.focusWidget() != left);
                QVERIFY2(edge(&window, left) != shown, qPrintable(left->objectName()));
            }
        }
    }

    // At the screen's scale factor (2 under QT_SCALE_FACTOR=2, else 1): the same window in
    // logical pixels, that many device pixels to each, and the images drawn from their own
    // pixels at that size rather than enlarged.
    void scaling()
    {
        const int ratio = qRound(qApp->devicePixelRatio());
        const QString scaled = ratio == 2 ? QStringLiteral("@2x.png") : QStringLiteral(".png");
        const auto image = [&scaled](QString path) {
            return QImage(path.replace(QLatin1String(".png"), scaled), "png")
                .convertToFormat(QImage::Format_ARGB32_Premultiplied);
        };
        const auto list = scanStick({"c.crt", "w.jpg"});
        MgrDlg window(list.get(), gated);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QCOMPARE(window.size(), QSize(653, 351));
        QCOMPARE(window.grab().size(), QSize(653, 351) * ratio);

        const QPixmap title = child<QLabel>(&window, "lIcon")->pixmap(Qt::ReturnByValue);
        QCOMPARE(title.devicePixelRatio(), qreal(ratio));
        QCOMPARE(title.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied),
                 image(QStringLiteral(":/dax-icons/usbrc/memorystick.png")));
        auto *types = child<QListWidget>(&window, "lwType");
        for (int row = 0; row < types->count(); ++row) {
            const QPixmap icon = types->item(row)->icon().pixmap(window.windowHandle(), {32, 32});
            QCOMPARE(icon.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied),
                     image(typeOf(types->item(row)).iconPath()));
        }
    }

    void dialogRefusesToCloseUntilDone_data()
    {
        QTest::addColumn<QString>("text"); // the firmware update's own text is never shown
        const char *const texts[] = {"ppd",           "Installing printer drivers...",
                                     "cert",          "Installing certificates...",
                                     "update",        "Installing...",
                                     "ScreenConnect", "Installing Screen Connect...",
                                     "wallpaper",     "Installing wallpaper...",
                                     "icon",          "Installing icon...",
                                     "desktop",       "Installing Desktop Image...",
                                     "screensaver",   "Screensaver image(s)...",
                                     "iwallpaper",    "Installing Imprivata Wallpaper Image...",
                                     "ilogo",         "Installing Imprivata Login Image...",
                                     "iproxcard",     "Installing Imprivata Card Image...",
                                     "openvpn",       "Installing OpenVPN client config...",
                                     "rdpfile",       "Importing RDP file settings...",
                                     "disclaimer",    "Importing disclaimer..."};
        for (size_t i = 0; i < std::size(texts); i += 2)
            QTest::newRow(texts[i]) << QString::fromLatin1(texts[i + 1]);
    }

    void dialogRefusesToCloseUntilDone()
    {
        QFETCH(QString, text);

        gate.install = false;
        gate.hold = true;
        InstallJob job(*PackageTypes::find(QLatin1String(QTest::currentDataTag())), "/nowhere",
                       {"file"});
        InstallerDlg dialog(&job, gated);
        // Ends the held worker also when a check fails, before the dialog waits for it.
        const auto unblock = qScopeGuard([] { gate.release.release(); });
        dialog.show();
        QVERIFY(gate.started.tryAcquire(1, 60000));
        auto *label = child<QLabel>(&dialog, "lInstall");
        QCOMPARE(label->text(), text);
        // The close button, then Escape.
        QVERIFY(!dialog.close());
        QTest::keyClick(&dialog, Qt::Key_Escape);
        QVERIFY(dialog.isVisible());

        gate.release.release();
        QVERIFY(QTest::qWaitFor([&dialog] { return !dialog.isVisible(); }));
        QCOMPARE(label->text(), QStringLiteral("Package(s) Installed"));
    }

    // A failed installation keeps its dialog open, names the first failure and the count, and
    // closes on Return, Escape or its Close button; the repeats of a held key do nothing.
    void failedDialogStaysUntilDismissed_data()
    {
        QTest::addColumn<int>("key"); // 0: the Close button is clicked
        QTest::newRow("Return") << int(Qt::Key_Return);
        QTest::newRow("Escape") << int(Qt::Key_Escape);
        QTest::newRow("Close") << 0;
    }

    void failedDialogStaysUntilDismissed()
    {
        QFETCH(int, key);
        gate.install = false;
        gate.fail = true;
        InstallJob job(*PackageTypes::find(QStringLiteral("wallpaper")), "/nowhere", {"file"});
        InstallerDlg dialog(&job, gated);
        dialog.show();
        QVERIFY(gate.started.tryAcquire(1, 60000));
        QTRY_COMPARE(child<QLabel>(&dialog, "lInstall")->text(),
                     QStringLiteral("The installation failed."));
        QTest::qWait(100);
        QVERIFY(dialog.isVisible());
        QCOMPARE(child<QLabel>(&dialog, "lFailure")->text(),
                 QStringLiteral("the copy of beach.jpg in /tmp/config/files/wallpapers/ is "
                                "missing.\n\n2 steps failed. The system log holds the details."));
        auto *close = child<QPushButton>(&dialog, "pbClose");
        QVERIFY(close->isVisible() && close->isDefault());
        QCOMPARE(dialog.focusWidget(), close);
        for (const Qt::Key held : {Qt::Key_Return, Qt::Key_Escape, Qt::Key_Space}) {
            QKeyEvent repeat(QEvent::KeyPress, held, Qt::NoModifier, QString(), true);
            QCoreApplication::sendEvent(close, &repeat);
        }
        QVERIFY(dialog.isVisible());
        if (key)
            QTest::keyClick(close, Qt::Key(key));
        else
            click(close);
        QTRY_VERIFY(!dialog.isVisible());
    }
};

QTEST_MAIN(TestWindows)
#include "test_windows.moc"

#include "SimClient.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QtTest>

// The whole program on its own X server inside the simulated client, driven with the mouse and
// the keyboard the way an administrator drives it.
namespace {

const QString workDir = QStringLiteral("/tmp/e2e");
const QString releaseFile = workDir + QStringLiteral("/release");
// What the installer's sync saw of the toolkit's GL integration setting.
const QString syncEnv = workDir + QStringLiteral("/sync-env");

// Where the controls sit in the main window (the form's absolute geometry).
const QPoint typeListRow0(60, 90);
const QPoint singleInstall(480, 325); // bSInstall: page at (200, 80), button at (230, 230)
const QPoint closeButton(590, 325);   // bQuit at (540, 310)

} // namespace

class TestE2e : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void installFromTheWindow();

private:
    QString x(const QStringList &command, bool *ok = nullptr);
    void click(const QString &window, const QPoint &at);
    QString mapState(const QString &window);
    QStringList visibleWindows();
    QString geometry(const QString &window);

    QProcess server;
    QProcess installer;
    QString display;
};

void TestE2e::initTestCase()
{
    simclient::requireSim();
    for (const char *tool : {"Xvfb", "xdotool", "xwininfo"}) {
        if (QStandardPaths::findExecutable(QLatin1String(tool)).isEmpty())
            QSKIP(qPrintable(QStringLiteral("needs %1 (Debian packages xvfb, xdotool, x11-utils)")
                                 .arg(QLatin1String(tool))));
    }
    QDir().mkpath(workDir);

    // -displayfd: the server picks a free display and writes its number on standard output.
    server.start(QStringLiteral("Xvfb"),
                 {"-displayfd", "1", "-nolisten", "tcp", "-screen", "0", "1024x768x24"});
    QVERIFY(server.waitForStarted());
    QTRY_VERIFY_WITH_TIMEOUT(server.canReadLine(), 60000);
    display = QLatin1Char(':') + QString::fromLatin1(server.readLine().trimmed());
    QVERIFY2(display.size() > 1, "Xvfb named no display");
}

void TestE2e::cleanupTestCase()
{
    for (QProcess *process : {&installer, &server}) {
        if (process->state() != QProcess::NotRunning) {
            process->terminate();
            process->waitForFinished(30000);
        }
    }
}

QString TestE2e::x(const QStringList &command, bool *ok)
{
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("DISPLAY"), display);
    process.setProcessEnvironment(env);
    process.start(command.first(), command.mid(1));
    const bool ended = process.waitForFinished(60000);
    if (ok)
        *ok = ended && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    return QString::fromLocal8Bit(process.readAllStandardOutput()).trimmed();
}

void TestE2e::click(const QString &window, const QPoint &at)
{
    bool ok = false;
    x({"xdotool", "mousemove", "--window", window, QString::number(at.x()), QString::number(at.y()),
       "click", "1"},
      &ok);
    QVERIFY(ok);
}

QString TestE2e::mapState(const QString &window)
{
    const QString info = x({"xwininfo", "-id", window});
    const QRegularExpressionMatch match =
        QRegularExpression(QStringLiteral("Map State: (\\w+)")).match(info);
    return match.captured(1);
}

QStringList TestE2e::visibleWindows()
{
    return x({"xdotool", "search", "--onlyvisible", "--name", "^USB Installer$"})
        .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

QString TestE2e::geometry(const QString &window)
{
    const QString info = x({"xwininfo", "-id", window});
    const QString width =
        QRegularExpression(QStringLiteral("Width: (\\d+)")).match(info).captured(1);
    const QString height =
        QRegularExpression(QStringLiteral("Height: (\\d+)")).match(info).captured(1);
    return width + QLatin1Char('x') + height;
}

void TestE2e::installFromTheWindow()
{
    simclient::clearLogs();
    const QString stick = simclient::makeStick({"photo.jpg"}, {"a picture"});

    // The wallpaper installer ends with "sync"; this one waits until the test lets it go, so
    // that the progress dialog can be seen while it runs.
    const QString tools = workDir + QStringLiteral("/bin");
    QDir().mkpath(tools);
    QFile sync(tools + QStringLiteral("/sync"));
    QVERIFY(sync.open(QIODevice::WriteOnly | QIODevice::Truncate));
    sync.write("#!/bin/sh\necho \"${QT_XCB_GL_INTEGRATION-unset}\" >'" + syncEnv.toUtf8() +
               "'\nwhile [ ! -e '" + releaseFile.toUtf8() +
               "' ]; do sleep 0.1; done\nexec /bin/sync \"$@\"\n");
    sync.close();
    QVERIFY(sync.setPermissions(sync.permissions() | QFileDevice::ExeOwner));

    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("DISPLAY"), display);
    env.insert(QStringLiteral("PATH"), tools + QLatin1Char(':') + env.value("PATH"));
    const QString runtime = workDir + QStringLiteral("/runtime");
    QDir().mkpath(runtime);
    QFile::setPermissions(runtime,
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    env.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtime);
    env.remove(QStringLiteral("QT_QPA_PLATFORM"));
    env.remove(QStringLiteral("QT_XCB_GL_INTEGRATION"));
    installer.setProcessEnvironment(env);
    installer.start(QString::fromLocal8Bit(qgetenv("USBI_BINARY_DIR")) +
                        QStringLiteral("/usb-installer"),
                    {stick});
    QVERIFY(installer.waitForStarted());

    // The window shows.
    bool ok = false;
    const QString window =
        x({"xdotool", "search", "--sync", "--onlyvisible", "--name", "^USB Installer$"}, &ok);
    QVERIFY2(ok && !window.contains(QLatin1Char('\n')), qPrintable(window));
    QCOMPARE(geometry(window), QStringLiteral("653x351"));
    // The widgets never use OpenGL: no driver of the GL stack is loaded.
    const QByteArray maps =
        simclient::readFile(QStringLiteral("/proc/%1/maps").arg(installer.processId()));
    QVERIFY(maps.contains("libQt5Widgets"));
    QVERIFY(!maps.contains("_dri.so"));

    // "Wallpaper" is the last of the five types a picture offers: focus the type list and go
    // to its end, then install the picture preselected on its page.
    x({"xdotool", "windowfocus", "--sync", window});
    click(window, typeListRow0);
    x({"xdotool", "key", "--clearmodifiers", "End"}, &ok);
    QVERIFY(ok);
    click(window, singleInstall);

    // While the installer runs, the progress dialog is the only window.
    QTRY_COMPARE_WITH_TIMEOUT(mapState(window), QStringLiteral("IsUnMapped"), 60000);
    QTRY_COMPARE_WITH_TIMEOUT(visibleWindows().size(), 1, 60000);
    const QString dialog = visibleWindows().first();
    QVERIFY(dialog != window);
    QCOMPARE(geometry(dialog), QStringLiteral("320x90"));

    // Let it end: the dialog closes itself and the window returns; the program keeps running.
    QFile release(releaseFile);
    QVERIFY(release.open(QIODevice::WriteOnly));
    release.close();
    QTRY_COMPARE_WITH_TIMEOUT(mapState(window), QStringLiteral("IsViewable"), 60000);
    QCOMPARE(visibleWindows(), QStringList{window});
    QCOMPARE(installer.state(), QProcess::Running);

    // The installer's commands see the environment the program was started with.
    QCOMPARE(simclient::readFile(syncEnv), QByteArray("unset\n"));

    // One installation, of the picture chosen as wallpaper.
    QCOMPARE(simclient::calls(QStringLiteral("setwp")),
             QStringList{"setwp [/tmp/config/files/default_wp]"});
    QCOMPARE(
        simclient::storeValue(QStringLiteral("user/system/desktop"), QStringLiteral("WALLPAPER")),
        QStringLiteral("/tmp/config/files/wallpapers/photo.jpg"));

    // Close ends the program with the event loop's status.
    click(window, closeButton);
    QVERIFY(installer.waitForFinished(60000));
    QCOMPARE(installer.exitStatus(), QProcess::NormalExit);
    QCOMPARE(installer.exitCode(), 0);

    const QString err = QString::fromLocal8Bit(installer.readAllStandardError());
    for (const char *warning : {"QThread", "QObject::", "No such slot", "No such signal",
                                "QWidget::", "QPixmap", "qt."}) {
        QVERIFY2(!err.contains(QLatin1String(warning)), qPrintable(err));
    }
}

QTEST_GUILESS_MAIN(TestE2e)
#include "test_e2e.moc"

#include "DaxProperties.h"
#include "SimClient.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QtTest>

// Runs the built program the way the client starts it, inside the simulated client, and checks
// what it prints and how it ends. The password prompt and killall are replaced by small
// recording scripts first on the program's PATH.
namespace {

const QString workDir = QStringLiteral("/tmp/startup");
// What the recording scripts saw of the toolkit's setting, one line per call.
const QString envLog = workDir + QStringLiteral("/env.log");

QString program()
{
    return QString::fromLocal8Bit(qgetenv("USBI_BINARY_DIR")) + QStringLiteral("/usb-installer");
}

void writeScript(const QString &path, const QByteArray &body)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(
        "#!/bin/sh\n"
        "{ printf '%s' \"$(basename \"$0\")\"; for a; do printf ' [%s]' \"$a\"; done; echo; }"
        " >> \"$SIM_CALL_LOG\"\n"
        "echo \"$(basename \"$0\") ${QT_XCB_GL_INTEGRATION-unset}\" >> " +
        envLog.toUtf8() + "\n" + body);
    file.close();
    QVERIFY(file.setPermissions(file.permissions() | QFileDevice::ExeOwner));
}

// A folder for PATH holding the recording killall and, when gate is an exit code, a wpasswd
// that exits with it ("off" and "missing": no wpasswd).
QString toolFolder(const QString &gate)
{
    static int counter = 0;
    const QString dir = workDir + QStringLiteral("/bin-%1").arg(++counter);
    QDir().mkpath(dir);
    writeScript(dir + QStringLiteral("/killall"), "exec /usr/bin/killall \"$@\"\n");
    bool isCode = false;
    gate.toInt(&isCode);
    if (isCode)
        writeScript(dir + QStringLiteral("/wpasswd"), "exit " + gate.toLatin1() + "\n");
    return dir;
}

void setGate(bool on)
{
    DaxProperties security(QStringLiteral("user/system/security"), QString(), true);
    security.Load();
    security.SetBoolean(QStringLiteral("enableterminalpass"), on);
    QVERIFY(security.Save());
}

struct Outcome
{
    int status = -1;
    QString out;
    QString err;
};

// Starts the program (as invoked) with args; the caller waits for it or stops it.
void start(QProcess &process, const QString &invoked, const QStringList &args, const QString &tools)
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    const QString runtime = workDir + QStringLiteral("/runtime");
    QDir().mkpath(runtime);
    QFile::setPermissions(runtime,
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    env.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtime);
    // Not the simulated client's own tools: the test decides what wpasswd does.
    env.insert(QStringLiteral("PATH"), tools + QStringLiteral(":/usr/sbin:/usr/bin:/sbin:/bin"));
    process.setProcessEnvironment(env);
    process.start(invoked, args);
    QVERIFY2(process.waitForStarted(), qPrintable(process.errorString()));
}

Outcome run(const QString &invoked, const QStringList &args, const QString &tools)
{
    QProcess process;
    start(process, invoked, args, tools);
    Outcome outcome;
    if (!process.waitForFinished(120000)) {
        process.kill();
        process.waitForFinished();
        return outcome;
    }
    outcome.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2;
    outcome.out = QString::fromLocal8Bit(process.readAllStandardOutput());
    outcome.err = QString::fromLocal8Bit(process.readAllStandardError());
    return outcome;
}

} // namespace

class TestStartup : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void commandLineAndGate_data();
    void commandLineAndGate();
    void gateWithoutPrompt();
    void windowKeepsRunning();
    void programsSeeTheStartEnvironment_data();
    void programsSeeTheStartEnvironment();
};

void TestStartup::initTestCase()
{
    simclient::requireSim();
    QVERIFY2(QFile::exists(program()), qPrintable(program()));
    QDir().mkpath(workDir);
    QFile::remove(workDir + QStringLiteral("/installer"));
    QVERIFY(QFile::link(program(), workDir + QStringLiteral("/installer")));
}

void TestStartup::init()
{
    simclient::clearLogs();
    setGate(false);
}

void TestStartup::commandLineAndGate_data()
{
    QTest::addColumn<QString>("gate"); // "off", wpasswd's exit code, or "missing"
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("out");
    QTest::addColumn<QString>("err");
    QTest::addColumn<QStringList>("calls");

    const QString usage = QStringLiteral("usage : /tmp/startup/installer mount_dir\n");
    const QString empty = simclient::makeStick({});
    const QString nothing = simclient::makeStick({"readme.md", "notes.doc"});
    const QString notFound = QStringLiteral("no resources found in  \"%1\"\n");
    const QStringList cleanup{"killall [wpassword]"};
    const QStringList refused{"wpasswd", "killall [wpasswd]"};
    const QString unsafe =
        QStringLiteral("Refusing the mount directory \"%1\": it holds '%2', which a shell "
                       "command would act on\n");

    QTest::newRow("no argument") << "off" << QStringList() << 1 << usage << "" << QStringList();
    QTest::newRow("two arguments")
        << "off" << QStringList{empty, empty} << 1 << usage << "" << QStringList();
    QTest::newRow("only a toolkit option")
        << "off" << QStringList{"-platform", "offscreen"} << 1 << usage << "" << QStringList();
    QTest::newRow("toolkit option before the folder")
        << "off" << QStringList{"-platform", "offscreen", empty} << 0 << "" << notFound.arg(empty)
        << cleanup;
    QTest::newRow("toolkit option after the folder")
        << "off" << QStringList{empty, "-style", "fusion"} << 0 << "" << notFound.arg(empty)
        << cleanup;
    QTest::newRow("missing folder") << "off" << QStringList{"/tmp/no such stick"} << 0 << ""
                                    << notFound.arg("/tmp/no such stick") << cleanup;
    QTest::newRow("nothing installable")
        << "off" << QStringList{nothing} << 0 << "" << notFound.arg(nothing) << cleanup;
    QTest::newRow("mount folder holding ;") << "off" << QStringList{"/tmp/sticks/a;b"} << 1 << ""
                                            << unsafe.arg("/tmp/sticks/a;b", ";") << QStringList();
    QTest::newRow("mount folder holding a line break")
        << "off" << QStringList{"/media/a\nb$"} << 1 << "" << unsafe.arg("/media/a\\nb$", "\\n")
        << QStringList();
    QTest::newRow("gate passed") << "1" << QStringList{empty} << 0 << ""
                                 << QStringLiteral("Exit codee  1\n") + notFound.arg(empty)
                                 << QStringList{"wpasswd", "killall [wpassword]"};
    QTest::newRow("gate passed, then usage")
        << "1" << QStringList() << 1 << usage << "Exit codee  1\n"
        << QStringList{"wpasswd"};
    QTest::newRow("gate refused") << "0" << QStringList{empty} << 1 << ""
                                  << "Exit codee  0\n"
                                  << refused;
    QTest::newRow("gate refused before the usage") << "0" << QStringList() << 1 << ""
                                                   << "Exit codee  0\n"
                                                   << refused;
    QTest::newRow("gate refused by another code") << "7" << QStringList{empty} << 1 << ""
                                                  << "Exit codee  7\n"
                                                  << refused;
}

void TestStartup::commandLineAndGate()
{
    QFETCH(QString, gate);
    QFETCH(QStringList, args);
    QFETCH(int, status);
    QFETCH(QString, out);
    QFETCH(QString, err);
    QFETCH(QStringList, calls);

    setGate(gate != QLatin1String("off"));
    const Outcome outcome = run(workDir + QStringLiteral("/installer"), args, toolFolder(gate));
    QCOMPARE(outcome.out, out);
    QCOMPARE(outcome.err, err);
    QCOMPARE(outcome.status, status);
    QCOMPARE(simclient::calls(), calls);
}

void TestStartup::gateWithoutPrompt()
{
    setGate(true);
    const Outcome outcome = run(program(), {simclient::makeStick({"photo.jpg"})},
                                toolFolder(QStringLiteral("missing")));
    QCOMPARE(outcome.status, 1);
    QCOMPARE(outcome.out, QString());
    QVERIFY2(
        QRegularExpression(QStringLiteral("^Exit codee  -?\\d+\n$")).match(outcome.err).hasMatch(),
        qPrintable(outcome.err));
    QCOMPARE(simclient::calls(), QStringList{"killall [wpasswd]"});
}

void TestStartup::windowKeepsRunning()
{
    const QString stick = simclient::makeStick({"photo.jpg"});
    QProcess process;
    start(process, program(), {stick}, toolFolder(QStringLiteral("off")));
    // Start-up ends with the clean-up of stray prompts, then opens the window and waits in it.
    QTRY_COMPARE_WITH_TIMEOUT(simclient::calls(), QStringList{"killall [wpassword]"}, 60000);
    QVERIFY(!process.waitForFinished(2000));
    QCOMPARE(process.state(), QProcess::Running);
    process.terminate();
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(QString::fromLocal8Bit(process.readAllStandardOutput()), QString());
    QCOMPARE(QString::fromLocal8Bit(process.readAllStandardError()), QString());
}

void TestStartup::programsSeeTheStartEnvironment_data()
{
    QTest::addColumn<QByteArray>("setting"); // the toolkit's GL integration setting, if any
    QTest::newRow("not set") << QByteArray();
    QTest::newRow("set by the administrator") << QByteArray("xcb_egl");
}

// The program turns the toolkit's OpenGL integration off for itself only: the password prompt
// and killall see the environment it was started with.
void TestStartup::programsSeeTheStartEnvironment()
{
    QFETCH(QByteArray, setting);
    const QByteArray previous = qgetenv("QT_XCB_GL_INTEGRATION");
    if (setting.isNull())
        qunsetenv("QT_XCB_GL_INTEGRATION");
    else
        qputenv("QT_XCB_GL_INTEGRATION", setting);
    setGate(true);
    QFile::remove(envLog);
    const Outcome outcome = run(program(), {simclient::makeStick({})}, toolFolder("1"));
    if (previous.isNull())
        qunsetenv("QT_XCB_GL_INTEGRATION");
    else
        qputenv("QT_XCB_GL_INTEGRATION", previous);

    QCOMPARE(outcome.status, 0);
    const QString seen = setting.isNull() ? QStringLiteral("unset") : QString::fromLatin1(setting);
    QCOMPARE(simclient::readFile(envLog),
             ("wpasswd " + seen + "\nkillall " + seen + "\n").toUtf8());
}

QTEST_GUILESS_MAIN(TestStartup)
#include "test_startup.moc"

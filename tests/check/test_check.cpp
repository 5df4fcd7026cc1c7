#include "PackageTypes.h"
#include "SimClient.h"
#include "StickCheck.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>

// The stick check: why each entry is or is not offered, and how the command line answers.
// What it plans is compared with what the simulated client records in the installer tests.
class TestCheck : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void entryReasons_data();
    void entryReasons();
    void commandLine_data();
    void commandLine();
};

namespace {

QStringList keys(const QList<const PackageType *> &types)
{
    QStringList result;
    for (const PackageType *type : types)
        result.append(type->typeKey());
    return result;
}

const QStringList pictures{"icon", "iproxcard", "ilogo", "iwallpaper", "wallpaper"};

} // namespace

void TestCheck::initTestCase()
{
    simclient::requireSim();
    QVERIFY(QDir().mkpath(QStringLiteral("/tmp/a;b")));
    QVERIFY(QFile(QStringLiteral("/tmp/a;b/beach.jpg")).open(QIODevice::WriteOnly));
}

void TestCheck::entryReasons_data()
{
    QTest::addColumn<QString>("entry");
    QTest::addColumn<QString>("kind"); // file, folder (holding inner.png), fifo or link
    QTest::addColumn<QString>("linkTarget");
    QTest::addColumn<QString>("reported"); // the entry looked at, when not the one made
    QTest::addColumn<QString>("reason");
    QTest::addColumn<QString>("detail");
    QTest::addColumn<QStringList>("offeredAs");
    QTest::addColumn<QStringList>("hiddenTypes");

    const QStringList none;
    QTest::newRow("hidden") << ".logo.png"
                            << "file" << QString() << QString() << "hidden" << QString() << none
                            << none;
    QTest::newRow("folder") << "pictures"
                            << "folder" << QString() << QString() << "folder" << QString() << none
                            << none;
    QTest::newRow("inside a subfolder") << "pictures"
                                        << "folder" << QString() << "pictures/inner.png"
                                        << "in-subfolder" << QString() << none << none;
    QTest::newRow("not a regular file")
        << "pipe.png"
        << "fifo" << QString() << QString() << "not-a-file" << QString() << none << none;
    QTest::newRow("dangling link") << "gone.png"
                                   << "link"
                                   << "missing.png" << QString() << "dangling-link"
                                   << "{stick}/missing.png" << none << none;
    QTest::newRow("refused name") << "a;b.png"
                                  << "file" << QString() << QString() << "refused-name"
                                  << ";" << none << none;
    QTest::newRow("link loop") << "loop.png"
                               << "link"
                               << "loop.png" << QString() << "link-loop"
                               << "{stick}/loop.png" << none << none;
    QTest::newRow("link to a folder") << "dir.png"
                                      << "link"
                                      << "." << QString() << "link-to-non-file"
                                      << "{stick}" << none << none;
    QTest::newRow("link that leaves the stick")
        << "notice.txt"
        << "link"
        << "/etc/hostname" << QString() << "link-leaves-stick"
        << "/etc/hostname" << none << none;
    QTest::newRow("no pattern") << "notes.doc"
                                << "file" << QString() << QString() << "no-pattern" << QString()
                                << none << none;
    QTest::newRow("no pattern, extension hidden")
        << "driver.ppd.gz"
        << "file" << QString() << QString() << "no-pattern" << QString() << none
        << QStringList{"ppd"};
    QTest::newRow("offered, extension hidden")
        << "logo.png.txt"
        << "file" << QString() << QString() << QString() << QString() << QStringList{"disclaimer"}
        << pictures;
}

void TestCheck::entryReasons()
{
    QFETCH(QString, entry);
    QFETCH(QString, kind);
    QFETCH(QString, linkTarget);
    QFETCH(QString, reported);
    QFETCH(QString, reason);
    QFETCH(QString, detail);
    QFETCH(QStringList, offeredAs);
    QFETCH(QStringList, hiddenTypes);

    QTemporaryDir stick;
    const QString path = stick.filePath(entry);
    if (kind == QLatin1String("file"))
        QVERIFY(QFile(path).open(QIODevice::WriteOnly));
    if (kind == QLatin1String("folder")) {
        QVERIFY(QDir().mkpath(path));
        QVERIFY(QFile(path + QStringLiteral("/inner.png")).open(QIODevice::WriteOnly));
    }
    if (kind == QLatin1String("fifo"))
        QCOMPARE(mkfifo(QFile::encodeName(path).constData(), 0644), 0);
    if (kind == QLatin1String("link"))
        QVERIFY(QFile::link(linkTarget, path));

    const StickCheck check = checkStick(stick.path(), ClientState());
    const QString name = reported.isEmpty() ? entry : reported;
    const auto found = std::find_if(check.entries.begin(), check.entries.end(),
                                    [&name](const CheckedEntry &e) { return e.name == name; });
    QVERIFY2(found != check.entries.end(), qPrintable(name));
    QCOMPARE(reasonCode(found->reason), reason);
    QCOMPARE(found->detail, detail.replace(QStringLiteral("{stick}"), stick.path()));
    QCOMPARE(keys(found->types), offeredAs);
    QCOMPARE(keys(found->hiddenTypes), hiddenTypes);
    QCOMPARE(check.installations.size(), offeredAs.size());
    QCOMPARE(check.offeredCount(), offeredAs.isEmpty() ? 0 : 1);
}

void TestCheck::commandLine_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("why"); // the one line on standard error, when there is one

    const QString stick = qEnvironmentVariable("USBI_SOURCE_DIR") + QStringLiteral("/sim/stick");
    QTest::newRow("sample stick") << QStringList{stick} << 0 << QString();
    QTest::newRow("sample stick, every option")
        << QStringList{stick, "--legacy", "--marker", "--modality", "ZUL-C", "--json"} << 0
        << QString();
    QTest::newRow("nothing offered")
        << QStringList{"/tmp/config"} << 3 << "nothing on /tmp/config would be offered";
    QTest::newRow("refused mount directory")
        << QStringList{"/tmp/a;b"} << 3 << "the program refuses /tmp/a;b: it holds ';'";
    QTest::newRow("no directory") << QStringList{} << 2 << "expected one mount directory";
    QTest::newRow("two directories")
        << QStringList{stick, stick} << 2 << "expected one mount directory";
    QTest::newRow("unknown option") << QStringList{stick, "--legcy"} << 2 << "'legcy'";
    QTest::newRow("modality without a name")
        << QStringList{stick, "--modality"} << 2 << "'--modality'";
    QTest::newRow("missing directory")
        << QStringList{"/nonexistent"} << 2 << "cannot read /nonexistent: no such directory";
    QTest::newRow("a file") << QStringList{stick + "/beach.jpg"} << 2 << "not a directory";
}

void TestCheck::commandLine()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, status);
    QFETCH(QString, why);

    QProcess check;
    check.start(qEnvironmentVariable("USBI_BINARY_DIR") + QStringLiteral("/usb-stick-check"),
                arguments);
    QVERIFY(check.waitForFinished());
    QCOMPARE(check.exitStatus(), QProcess::NormalExit);
    QCOMPARE(check.exitCode(), status);
    const QString error = QString::fromUtf8(check.readAllStandardError());
    if (why.isEmpty()) {
        QCOMPARE(error, QString());
    } else {
        QVERIFY2(error.startsWith(QStringLiteral("usb-stick-check: ")) && error.contains(why) &&
                     error.count(QLatin1Char('\n')) == 1,
                 qPrintable(error));
    }
    const QByteArray output = check.readAllStandardOutput();
    if (arguments.contains(QStringLiteral("--json"))) {
        const QJsonObject report = QJsonDocument::fromJson(output).object();
        QCOMPARE(
            report.value(QStringLiteral("client")).toObject().value(QStringLiteral("modality")),
            QJsonValue(QStringLiteral("ZUL-C")));
        QVERIFY(!report.value(QStringLiteral("installations")).toArray().isEmpty());
    }
}

QTEST_GUILESS_MAIN(TestCheck)
#include "test_check.moc"

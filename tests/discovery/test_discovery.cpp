#include "PackageTypes.h"
#include "RcList.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

// Package discovery only lists directories: these tests run on the host, in temporary folders.
class TestDiscovery : public QObject
{
    Q_OBJECT

private slots:
    void filesOfEachType_data();
    void filesOfEachType();
    void onlyFilesOfTheDirectoryItself();
    void missingAndEmptyDirectories();
    void emptyDirectoryNameMeansWorkingDirectory();
    void whatIsOffered_data();
    void whatIsOffered();
    void typeKeysAreCaseSensitive();

private:
    static QString makeFiles(QTemporaryDir &dir, const QStringList &names);
    static RcList scanAll(const QString &dir);
};

QString TestDiscovery::makeFiles(QTemporaryDir &dir, const QStringList &names)
{
    for (const QString &name : names) {
        QFile file(dir.filePath(name));
        if (!file.open(QIODevice::WriteOnly))
            qFatal("cannot create %s", qPrintable(file.fileName()));
    }
    return dir.path();
}

RcList TestDiscovery::scanAll(const QString &dir)
{
    RcList list(dir);
    scanEveryType(list);
    return list;
}

void TestDiscovery::filesOfEachType_data()
{
    QTest::addColumn<QStringList>("stick");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QStringList>("expected");

    const QStringList mixedCase{"b.png", "A.png", "a.PNG"};
    QTest::newRow("sorted by name with case")
        << mixedCase << "ilogo" << QStringList{"A.png", "a.PNG", "b.png"};
    QTest::newRow("upper before lower")
        << QStringList{"a.jpg", "B.jpg"} << "desktop" << QStringList{"B.jpg", "a.jpg"};
    QTest::newRow("pattern case ignored")
        << QStringList{"PHOTO.JPG"} << "screensaver" << QStringList{"PHOTO.JPG"};
    QTest::newRow("full-name pattern case ignored")
        << QStringList{"screenconnect.clientsetup.deb", "other.deb"} << "ScreenConnect"
        << QStringList{"screenconnect.clientsetup.deb"};

    const QStringList jpeg{"photo.JPEG"};
    QTest::newRow("jpeg as wallpaper") << jpeg << "wallpaper" << jpeg;
    QTest::newRow("jpeg as icon") << jpeg << "icon" << jpeg;
    QTest::newRow("jpeg as imprivata wallpaper") << jpeg << "iwallpaper" << jpeg;
    QTest::newRow("jpeg not as desktop") << jpeg << "desktop" << QStringList{};
    QTest::newRow("jpeg not as screensaver") << jpeg << "screensaver" << QStringList{};

    const QStringList certs{"z.pfx", "a b.crt", "c.CER", "d.pem", "e.p12", "f.der", "g.key"};
    QTest::newRow("every certificate pattern")
        << certs << "cert" << QStringList{"a b.crt", "c.CER", "d.pem", "e.p12", "f.der", "z.pfx"};
    QTest::newRow("firmware archives") << QStringList{"fw.tzupg", "fw.tar", "fw.tar.gz"} << "update"
                                       << QStringList{"fw.tar", "fw.tzupg"};
    QTest::newRow("disclaimer") << QStringList{"notice.html", "Notice.TXT", "notice.htm"}
                                << "disclaimer" << QStringList{"Notice.TXT", "notice.html"};
    QTest::newRow("no file of the type") << QStringList{"a.ppd"} << "openvpn" << QStringList{};
}

void TestDiscovery::filesOfEachType()
{
    QFETCH(QStringList, stick);
    QFETCH(QString, type);
    QFETCH(QStringList, expected);

    QTemporaryDir dir;
    const RcList list = scanAll(makeFiles(dir, stick));
    QCOMPARE(list.filesOfType(type), expected);
    QCOMPARE(list.hasType(type), !expected.isEmpty());
}

void TestDiscovery::onlyFilesOfTheDirectoryItself()
{
    QTemporaryDir dir;
    makeFiles(dir, {".hidden.jpg"});
    QVERIFY(QDir(dir.path()).mkpath("x.jpg"));
    QVERIFY(QDir(dir.path()).mkpath("sub"));
    QFile nested(dir.filePath("sub/update.tar"));
    QVERIFY(nested.open(QIODevice::WriteOnly));
    nested.close();
    QVERIFY(QFile::link(dir.filePath("missing.jpg"), dir.filePath("dangling.jpg")));

    const RcList list = scanAll(dir.path());
    QVERIFY2(list.entries.isEmpty(), qPrintable(list.entries.value(0).file));
}

void TestDiscovery::missingAndEmptyDirectories()
{
    QTemporaryDir dir;
    RcList empty(dir.path());
    QVERIFY(scanEveryType(empty));
    QVERIFY(empty.entries.isEmpty());

    RcList missing(dir.filePath("not-there"));
    QVERIFY(!scanEveryType(missing));
    QVERIFY(missing.entries.isEmpty());
    QVERIFY(missing.filesOfType("ppd").isEmpty());
}

void TestDiscovery::emptyDirectoryNameMeansWorkingDirectory()
{
    QTemporaryDir dir;
    makeFiles(dir, {"here.ovpn"});
    const QString previous = QDir::currentPath();
    QVERIFY(QDir::setCurrent(dir.path()));
    const RcList list = scanAll(QString());
    QDir::setCurrent(previous);
    QCOMPARE(list.filesOfType("openvpn"), QStringList{"here.ovpn"});
}

namespace {
QStringList &messages()
{
    static QStringList list;
    return list;
}
} // namespace

void TestDiscovery::whatIsOffered_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("link");      // target of a link by that name; empty: a file
    QTest::addColumn<QStringList>("shown"); // what its one debug line holds; empty: no line

    // Names a shell would act on: never offered.
    for (const char *hostile : {"a;reboot;.rdp", "$(id).jpg", "`id`.jpg", "a&b.jpg", "a|b.jpg",
                                "a<b.jpg", "a>b.jpg", "-x.crt", "-rf.jpg"})
        QTest::newRow(hostile) << hostile << "" << QStringList{hostile};
    QTest::newRow("line break") << "line\nbreak.jpg"
                                << "" << QStringList{"break.jpg", "line break"};
    QTest::newRow("carriage return") << "carriage\rreturn.jpg"
                                     << "" << QStringList{"return.jpg"};
    QTest::newRow("double quotes") << "a\" \"b.crt.jpg"
                                   << "" << QStringList{"b.crt.jpg", "'\"'"};
    QTest::newRow("backslash") << "back\\slash.jpg"
                               << "" << QStringList{"slash.jpg"};
    // Names the installers quote where they leave a path bare: offered.
    QTest::newRow("blank, quotes, globs") << "a b (1) 'q' [*?] #2.jpg"
                                          << "" << QStringList{};
    QTest::newRow("dash inside, tilde, non-ASCII") << "x-y ~root é.jpg"
                                                   << "" << QStringList{};

    // Links: offered only while they end at a regular file inside the stick.
    QTest::newRow("link to a file beside it") << "linked.rdp"
                                              << "real.bin" << QStringList{};
    QTest::newRow("link into a subfolder") << "deep.jpg"
                                           << "sub/in.bin" << QStringList{};
    QTest::newRow("absolute link out")
        << "abs.txt"
        << "/etc/passwd" << QStringList{"abs.txt", "leaves", "/etc/passwd"};
    QTest::newRow("relative link out")
        << "up.crt"
        << "../outside.bin" << QStringList{"up.crt", "leaves", "outside.bin"};
    QTest::newRow("chain of links out")
        << "chain.jpg"
        << "hop" << QStringList{"chain.jpg", "leaves", "/etc/passwd"};
    QTest::newRow("link loop") << "loop.jpg"
                               << "loop.jpg" << QStringList{"loop.jpg", "loop"};
    QTest::newRow("dangling link")
        << "dangling.png"
        << "missing.png" << QStringList{"dangling.png", "dangling", "missing.png"};
    QTest::newRow("link to a device") << "dev.jpg"
                                      << "/dev/null" << QStringList{"dev.jpg", "/dev/null"};
    QTest::newRow("link to the stick itself")
        << "dir.jpg"
        << "." << QStringList{"dir.jpg", "not a regular file"};
}

// Every type scans the entry beside a file, a subfolder, a link out (none of them matching any
// pattern) and the stick's parent; a skipped entry gets one debug line, however many types'
// patterns it matches.
void TestDiscovery::whatIsOffered()
{
    QFETCH(QString, name);
    QFETCH(QString, link);
    QFETCH(QStringList, shown);

    QTemporaryDir parent;
    makeFiles(parent, {"outside.bin"});
    QVERIFY(QDir(parent.path()).mkpath("stick/sub"));
    const QString stick = parent.filePath("stick");
    for (const char *file : {"/real.bin", "/sub/in.bin"})
        QVERIFY(QFile(stick + QLatin1String(file)).open(QIODevice::WriteOnly));
    QVERIFY(QFile::link("/etc/passwd", stick + "/hop"));
    const QString path = stick + '/' + name;
    QVERIFY(link.isEmpty() ? QFile(path).open(QIODevice::WriteOnly) : QFile::link(link, path));

    messages().clear();
    const QtMessageHandler previous =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &message) {
            messages().append(message);
        });
    const RcList list = scanAll(stick);
    qInstallMessageHandler(previous);

    QStringList offered;
    for (const RcEntry &entry : list.entries)
        offered.append(entry.file);
    offered.removeDuplicates();
    QCOMPARE(offered, shown.isEmpty() ? QStringList{name} : QStringList{});
    QCOMPARE(messages().size(), shown.isEmpty() ? 0 : 1);
    for (const QString &part : shown)
        QVERIFY2(messages().first().contains(part), qPrintable(messages().first()));
}

void TestDiscovery::typeKeysAreCaseSensitive()
{
    QTemporaryDir dir;
    const RcList list = scanAll(makeFiles(dir, {"a.cer"}));
    QVERIFY(list.hasType("cert"));
    QVERIFY(!list.hasType("Cert"));
    QVERIFY(list.filesOfType("CERT").isEmpty());
    QVERIFY(PackageTypes::find("Cert") == nullptr);
}

QTEST_GUILESS_MAIN(TestDiscovery)
#include "test_discovery.moc"

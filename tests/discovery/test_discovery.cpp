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
    void linksToFilesAreOfferedUnderTheirOwnName();
    void missingAndEmptyDirectories();
    void emptyDirectoryNameMeansWorkingDirectory();
    void hostileNamesAreSkippedAndLogged();
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

void TestDiscovery::linksToFilesAreOfferedUnderTheirOwnName()
{
    QTemporaryDir dir;
    makeFiles(dir, {"target.bin"});
    QVERIFY(QFile::link(dir.filePath("target.bin"), dir.filePath("linked.rdp")));

    const RcList list = scanAll(dir.path());
    QCOMPARE(list.filesOfType("rdpfile"), QStringList{"linked.rdp"});
    QCOMPARE(list.entries.size(), 1);
}

void TestDiscovery::missingAndEmptyDirectories()
{
    QTemporaryDir dir;
    RcList empty(dir.path());
    QVERIFY(empty.scan("ppd", {"*.ppd"}));
    QVERIFY(empty.entries.isEmpty());

    RcList missing(dir.filePath("not-there"));
    QVERIFY(!missing.scan("ppd", {"*.ppd"}));
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

void TestDiscovery::hostileNamesAreSkippedAndLogged()
{
    // name on the stick, and a part of it that the debug line must show
    const QList<QPair<QString, QString>> hostile{{"a;reboot;.rdp", "a;reboot;.rdp"},
                                                 {"$(id).jpg", "$(id).jpg"},
                                                 {"`id`.jpg", "`id`.jpg"},
                                                 {"a&b.jpg", "a&b.jpg"},
                                                 {"a|b.jpg", "a|b.jpg"},
                                                 {"a<b.jpg", "a<b.jpg"},
                                                 {"a>b.jpg", "a>b.jpg"},
                                                 {"line\nbreak.jpg", "break.jpg"},
                                                 {"carriage\rreturn.jpg", "return.jpg"},
                                                 {"a\" \"b.crt.jpg", "b.crt.jpg"},
                                                 {"back\\slash.jpg", "slash.jpg"}};
    const QStringList harmless{"a b (1) 'q' [*?] #2.jpg", "ok.jpg"};
    QTemporaryDir dir;
    for (const auto &name : hostile)
        makeFiles(dir, {name.first});
    makeFiles(dir, harmless);

    messages().clear();
    const QtMessageHandler previous =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &message) {
            messages().append(message);
        });
    RcList list(dir.path());
    list.scan("desktop", {"*.jpg"});
    list.scan("rdpfile", {"*.rdp"});
    qInstallMessageHandler(previous);

    QCOMPARE(list.filesOfType("desktop"), harmless);
    QVERIFY(list.filesOfType("rdpfile").isEmpty());
    QCOMPARE(messages().size(), hostile.size());
    for (const auto &name : hostile) {
        const bool named =
            std::any_of(messages().cbegin(), messages().cend(),
                        [&name](const QString &m) { return m.contains(name.second); });
        QVERIFY2(named, qPrintable(name.second));
    }
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

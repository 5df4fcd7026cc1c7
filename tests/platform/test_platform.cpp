#include "DaxProperties.h"
#include "DaxRegIni.h"
#include "DaxRegistry.h"
#include "DaxSystem.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>
#include <signal.h>

// The host platform only ever touches the temporary folder each test creates: the stores'
// root, the shell log and the INI files all live there.
class TestPlatform : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void storeRoundTrip_data();
    void storeRoundTrip();
    void booleans_data();
    void booleans();
    void storeFileFormat();
    void missingAndEmptyStores();
    void malformedStoreIsNeverReplaced_data();
    void malformedStoreIsNeverReplaced();
    void pathsOutsideTheRootAreRefused();
    void unstorableValueLeavesStoreAlone();
    void encryptedValues();
    void encryptedValueNeedsItsKey();
    void legacyMode_data();
    void legacyMode();

    void iniRegistryKeepsOtherSections();
    void iniRegistryReplacesValues();
    void openKeyFails_data();
    void openKeyFails();

    void shellLogRecordsLinesInOrder();
    void backgroundLineReturnsAtOnce();
    void exitStatus_data();
    void exitStatus();

    void getxmlconfigTool_data();
    void getxmlconfigTool();

private:
    QString path(const QString &name) const { return m_dir->filePath(name); }
    QString storeFile(const QString &storePath) const
    {
        return path(QStringLiteral("config/") + storePath + QStringLiteral("/config.xml"));
    }
    void writeFile(const QString &name, const QByteArray &bytes);

    std::unique_ptr<QTemporaryDir> m_dir;
    qint64 m_backgroundPid = 0;
};

static QByteArray readFile(const QString &name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void TestPlatform::writeFile(const QString &name, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(name).absolutePath());
    QFile file(name);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

void TestPlatform::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
    qputenv("DAX_CONFIG_ROOT", QFile::encodeName(path("config")));
    qputenv("DAX_SHELL_LOG", QFile::encodeName(path("shell.log")));
    qunsetenv("DAX_KEY_FILE");
    qunsetenv("DAX_LEGACY_MODE");
}

void TestPlatform::cleanup()
{
    if (m_backgroundPid > 0)
        ::kill(static_cast<pid_t>(m_backgroundPid), SIGTERM);
    m_backgroundPid = 0;
    m_dir.reset();
}

void TestPlatform::storeRoundTrip_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value");

    QTest::newRow("path") << "WALLPAPER"
                          << "/tmp/config/files/wallpapers/a b.jpg";
    QTest::newRow("empty") << "DISCLAIMER"
                           << "";
    QTest::newRow("xml special characters") << "A&B <\"key\">"
                                            << "<b>&amp; 'x' \"y\"</b> ]]>";
    QTest::newRow("non-ASCII") << QString::fromUtf8("Schlüssel")
                               << QString::fromUtf8("Grüße, 日本 😀");
    QTest::newRow("blanks and line breaks") << "text"
                                            << "  one\r\ntwo\n\tthree  \r";
}

void TestPlatform::storeRoundTrip()
{
    QFETCH(QString, key);
    QFETCH(QString, value);
    {
        DaxProperties store("user/system/desktop", QString(), true);
        QVERIFY(!store.Load());
        store.SetString(key, value);
        store.SetString("other", "kept");
        QVERIFY(store.Save());
    }
    DaxProperties store("user/system/desktop", QString(), false);
    QVERIFY(store.Load());
    QCOMPARE(store.GetString(key, "missing"), value);
    QCOMPARE(store.GetString("other", "missing"), QString("kept"));
    QCOMPARE(store.GetString("absent", "missing"), QString("missing"));
}

void TestPlatform::booleans_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<bool>("expected");

    QTest::newRow("true") << "true" << true;
    QTest::newRow("1") << "1" << true;
    QTest::newRow("false") << "false" << false;
    QTest::newRow("0") << "0" << false;
    QTest::newRow("other text") << "yes" << false;
}

void TestPlatform::booleans()
{
    QFETCH(QString, stored);
    QFETCH(bool, expected);
    {
        DaxProperties store("user/system/security", QString(), false);
        store.SetString("flag", stored);
        store.SetBoolean("on", true);
        store.SetBoolean("off", false);
        QVERIFY(store.Save());
    }
    DaxProperties store("user/system/security", QString(), false);
    QVERIFY(store.Load());
    QCOMPARE(store.GetBoolean("flag", !expected), expected);
    QCOMPARE(store.GetBoolean("on", false), true);
    QCOMPARE(store.GetBoolean("off", true), false);
    QCOMPARE(store.GetBoolean("absent", true), true);
}

// Other tools write and read the same files.
void TestPlatform::storeFileFormat()
{
    writeFile(storeFile("user/system/security"),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<config>\n"
              "  <!-- written by hand -->\n"
              "  <entry key=\"enableterminalpass\">true</entry>\n"
              "  <entry key=\"name\">a &lt;b&gt;</entry>\n"
              "</config>\n");
    DaxProperties store("user/system/security", QString(), false);
    QVERIFY(store.Load());
    QVERIFY(store.GetBoolean("enableterminalpass", false));
    QCOMPARE(store.GetString("name", QString()), QString("a <b>"));

    store.SetString("WP_MD5", "0123456789abcdef0123456789abcdef");
    QVERIFY(store.Save());
    const QByteArray saved = readFile(storeFile("user/system/security"));
    QVERIFY2(saved.startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<config>"),
             saved.constData());
    QVERIFY2(saved.contains("<entry key=\"enableterminalpass\">true</entry>"), saved.constData());
    QVERIFY2(saved.contains("<entry key=\"WP_MD5\">0123456789abcdef0123456789abcdef</entry>"),
             saved.constData());
}

void TestPlatform::missingAndEmptyStores()
{
    DaxProperties missing("user/software/imprivata", QString(), true);
    missing.SetString("kept", "value");
    QVERIFY(!missing.Load());
    QCOMPARE(missing.GetString("kept", QString()), QString("value"));
    QVERIFY(!QFile::exists(storeFile("user/software/imprivata")));

    // An existing, empty file is a store without keys.
    writeFile(storeFile("user/software/imprivata"), QByteArray());
    DaxProperties empty("user/software/imprivata", QString(), true);
    QVERIFY(empty.Load());
    empty.SetString("Background", "/tmp/config/files/a.png");
    QVERIFY(empty.Save());
    DaxProperties reread("user/software/imprivata", QString(), true);
    QVERIFY(reread.Load());
    QCOMPARE(reread.GetString("Background", QString()), QString("/tmp/config/files/a.png"));
}

void TestPlatform::malformedStoreIsNeverReplaced_data()
{
    QTest::addColumn<QByteArray>("contents");

    QTest::newRow("not xml") << QByteArray("enableterminalpass=true\n");
    QTest::newRow("truncated") << QByteArray("<?xml version=\"1.0\"?>\n<config><entry key=\"a\">x");
    QTest::newRow("other root") << QByteArray("<settings><entry key=\"a\">x</entry></settings>");
    QTest::newRow("entry without key") << QByteArray("<config><entry>x</entry></config>");
    QTest::newRow("nested element")
        << QByteArray("<config><entry key=\"a\">x<b>y</b></entry></config>");
    QTest::newRow("stray text") << QByteArray("<config>x<entry key=\"a\">y</entry></config>");
    QTest::newRow("only blanks") << QByteArray(" \n");
}

void TestPlatform::malformedStoreIsNeverReplaced()
{
    QFETCH(QByteArray, contents);
    const QString file = storeFile("user/system/desktop");
    writeFile(file, contents);
    {
        DaxProperties store("user/system/desktop", QString(), false);
        store.SetString("before", "load");
        QTest::ignoreMessage(QtDebugMsg, QRegularExpression("malformed configuration store.*" +
                                                            QRegularExpression::escape(file)));
        QVERIFY(!store.Load());
        QCOMPARE(store.GetString("before", QString()), QString("load"));
        store.SetString("WALLPAPER", "/tmp/x.jpg");
        QTest::ignoreMessage(QtDebugMsg, QRegularExpression("not replacing"));
        QVERIFY(!store.Save());
    }
    QCOMPARE(readFile(file), contents);
}

void TestPlatform::pathsOutsideTheRootAreRefused()
{
    for (const QString &storePath :
         {QString("../escape"), QString("user/../../escape"), QString("/escape"), QString()}) {
        DaxProperties store(storePath, QString(), true);
        store.SetString("a", "b");
        QTest::ignoreMessage(QtDebugMsg, QRegularExpression("not a configuration path"));
        QVERIFY(!store.Save());
    }
    QVERIFY(!QFile::exists(path("escape/config.xml")));
    QVERIFY(!QFile::exists(path("config/escape/config.xml")));
}

void TestPlatform::unstorableValueLeavesStoreAlone()
{
    {
        DaxProperties store("user/system/desktop", QString(), false);
        store.SetString("WALLPAPER", "/tmp/a.jpg");
        QVERIFY(store.Save());
    }
    const QByteArray saved = readFile(storeFile("user/system/desktop"));
    DaxProperties store("user/system/desktop", QString(), false);
    QVERIFY(store.Load());
    store.SetString("DISCLAIMER", QString("bell \x07 inside"));
    QTest::ignoreMessage(QtDebugMsg, QRegularExpression("cannot store key.*DISCLAIMER"));
    QVERIFY(!store.Save());
    QCOMPARE(readFile(storeFile("user/system/desktop")), saved);
}

void TestPlatform::encryptedValues()
{
    const QString secret = QString::fromUtf8("s3cret pässword");
    {
        DaxProperties store("system/sec.cfg", QString(), false);
        store.setEncryptedString("password", secret);
        QCOMPARE(store.getEncryptedString("password", QString()), secret);
        store.SetBoolean("protected", true);
        QVERIFY(store.Save());
    }
    const QByteArray saved = readFile(storeFile("system/sec.cfg"));
    QVERIFY2(saved.contains("encrypted=\"true\""), saved.constData());
    QVERIFY2(!saved.contains("s3cret"), saved.constData());
    QVERIFY2(!saved.contains(secret.toUtf8()), saved.constData());

    QFile key(path("config/.key"));
    QCOMPARE(key.size(), qint64(32));
    QCOMPARE(key.permissions() & ~(QFile::ReadUser | QFile::WriteUser),
             QFile::ReadOwner | QFile::WriteOwner);

    DaxProperties fresh("system/sec.cfg", QString(), false);
    QVERIFY(fresh.Load());
    QCOMPARE(fresh.getEncryptedString("password", QString()), secret);
    QVERIFY(fresh.GetBoolean("protected", false));
    // Saving again keeps the sealed value as it was.
    QVERIFY(fresh.Save());
    QCOMPARE(readFile(storeFile("system/sec.cfg")), saved);
}

void TestPlatform::encryptedValueNeedsItsKey()
{
    qputenv("DAX_KEY_FILE", QFile::encodeName(path("keys/first.key")));
    {
        DaxProperties store("system/sec.cfg", QString(), false);
        store.setEncryptedString("password", "abc");
        QVERIFY(store.Save());
    }
    QCOMPARE(QFile(path("keys/first.key")).size(), qint64(32));
    QVERIFY(!QFile::exists(path("config/.key")));

    qputenv("DAX_KEY_FILE", QFile::encodeName(path("keys/second.key")));
    DaxProperties store("system/sec.cfg", QString(), false);
    QVERIFY(store.Load());
    QTest::ignoreMessage(QtDebugMsg, QRegularExpression("cannot decrypt"));
    QCOMPARE(store.getEncryptedString("password", "default"), QString("default"));

    // A key file that is not a key is never replaced and seals nothing.
    writeFile(path("keys/bad.key"), "short");
    qputenv("DAX_KEY_FILE", QFile::encodeName(path("keys/bad.key")));
    QTest::ignoreMessage(QtDebugMsg, QRegularExpression("cannot use the configuration key"));
    QTest::ignoreMessage(QtDebugMsg, QRegularExpression("not changed"));
    store.setEncryptedString("password", "new");
    QCOMPARE(readFile(path("keys/bad.key")), QByteArray("short"));
    qputenv("DAX_KEY_FILE", QFile::encodeName(path("keys/first.key")));
    QCOMPARE(store.getEncryptedString("password", QString()), QString("abc"));
}

void TestPlatform::legacyMode_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<bool>("legacy");

    QTest::newRow("unset") << QByteArray() << false;
    QTest::newRow("1") << QByteArray("1") << true;
    QTest::newRow("0") << QByteArray("0") << false;
    QTest::newRow("other") << QByteArray("yes") << false;
}

void TestPlatform::legacyMode()
{
    QFETCH(QByteArray, value);
    QFETCH(bool, legacy);
    if (!value.isNull())
        qputenv("DAX_LEGACY_MODE", value);
    QCOMPARE(DaxRegistry::isLegacyMode(), legacy);
}

void TestPlatform::iniRegistryKeepsOtherSections()
{
    const QByteArray other = "; sessions\n"
                             "[HKEY_LOCAL_MACHINE\\Software\\Other]\n"
                             "Name = spaced value\n"
                             "\n"
                             "[Session]\n"
                             "host=a\\b\n";
    writeFile(path("sessions.conf"), other);
    DaxRegIni ini;
    ini.SetIniPath(QFile::encodeName(path("sessions.conf")).constData());
    QCOMPARE(ini.OpenKey("HKEY_LOCAL_MACHINE", "Software\\Kelto\\Imprivata", 0x20006), 0);
    QCOMPARE(ini.SetSz("ProxCardImage", "/tmp/config/files/card.png"), 0);
    ini.CloseKey();
    QCOMPARE(readFile(path("sessions.conf")),
             other + "\n[HKEY_LOCAL_MACHINE\\Software\\Kelto\\Imprivata]\n"
                     "ProxCardImage=/tmp/config/files/card.png\n");
}

void TestPlatform::iniRegistryReplacesValues()
{
    const QString file = path("sessions.conf");
    for (const QString &value : {QString("/tmp/config/files/a.png"), QString("/tmp/b c.png")}) {
        DaxRegIni ini;
        ini.SetIniPath(QFile::encodeName(file).constData());
        QCOMPARE(ini.OpenKey("HKEY_LOCAL_MACHINE", "Software\\Kelto\\Imprivata", 0x20006), 0);
        QCOMPARE(ini.SetSz("Background", value), 0);
        QCOMPARE(ini.SetSz("CoBranding", "/tmp/logo.png"), 0);
        ini.CloseKey();
    }
    QCOMPARE(readFile(file), QByteArray("[HKEY_LOCAL_MACHINE\\Software\\Kelto\\Imprivata]\n"
                                        "Background=/tmp/b c.png\n"
                                        "CoBranding=/tmp/logo.png\n"));
}

void TestPlatform::openKeyFails_data()
{
    QTest::addColumn<QString>("iniFile");
    QTest::addColumn<uint>("access");
    QTest::addColumn<bool>("logged");

    QTest::newRow("folder is a file") << "plain/sessions.conf" << 0x20006u << true;
    QTest::newRow("missing folder") << "missing/sessions.conf" << 0x20006u << true;
    QTest::newRow("ini path is a folder") << "folder" << 0x20006u << true;
    QTest::newRow("reading a missing key") << "sessions.conf" << 0x20019u << false;
}

void TestPlatform::openKeyFails()
{
    QFETCH(QString, iniFile);
    QFETCH(uint, access);
    QFETCH(bool, logged);
    writeFile(path("plain"), "not a folder");
    QVERIFY(QDir().mkpath(path("folder")));
    DaxRegIni ini;
    ini.SetIniPath(QFile::encodeName(path(iniFile)).constData());
    if (logged)
        QTest::ignoreMessage(QtDebugMsg, QRegularExpression("^cannot (read|write)"));
    QVERIFY(ini.OpenKey("HKEY_LOCAL_MACHINE", "Software\\Kelto\\Imprivata", access) != 0);
    QVERIFY(ini.SetSz("Background", "x") != 0);
    QVERIFY(!QFile::exists(path("missing")));
}

void TestPlatform::shellLogRecordsLinesInOrder()
{
    QVERIFY(QDir::setCurrent(m_dir->path()));
    const QStringList lines{
        "echo one > out",
        "false",
        "printf '%s|' \"two words\" 'it''s' >> out",
        "cp \"missing file\" /nonexistent/target 2>/dev/null",
        "echo three >> out",
    };
    for (const QString &line : lines)
        DaxSystem::execShell(line);
    QCOMPARE(QString::fromUtf8(readFile(path("shell.log"))), lines.join('\n') + '\n');
    QCOMPARE(readFile(path("out")), QByteArray("one\ntwo words|its|three\n"));
}

// The background program keeps the shell's standard output and error open; the call must
// still return as soon as the shell itself has ended.
void TestPlatform::backgroundLineReturnsAtOnce()
{
    QVERIFY(QDir::setCurrent(m_dir->path()));
    QCOMPARE(DaxSystem::execShell("sh -c 'echo $$ > pid.tmp && mv pid.tmp pid; exec sleep 60' &"),
             0);
    QTRY_VERIFY(QFile::exists(path("pid")));
    m_backgroundPid = readFile(path("pid")).trimmed().toLongLong();
    QVERIFY(m_backgroundPid > 0);
    QCOMPARE(::kill(static_cast<pid_t>(m_backgroundPid), 0), 0);

    // A foreground line, by contrast, has finished when the call returns.
    QCOMPARE(DaxSystem::execShell("sleep 0.2; echo done > fg"), 0);
    QCOMPARE(readFile(path("fg")), QByteArray("done\n"));
}

void TestPlatform::exitStatus_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("status");

    QTest::newRow("success") << "true" << 0;
    QTest::newRow("failure") << "false" << 1;
    QTest::newRow("exit 3") << "exit 3" << 3;
    QTest::newRow("last command counts") << "false; true" << 0;
    QTest::newRow("not found") << "./no-such-program-here" << 127;
    QTest::newRow("killed") << "kill -TERM $$" << 128 + SIGTERM;
}

void TestPlatform::exitStatus()
{
    QFETCH(QString, line);
    QFETCH(int, status);
    QVERIFY(QDir::setCurrent(m_dir->path()));
    QCOMPARE(DaxSystem::execShell(line + " 2>/dev/null"), status);
}

void TestPlatform::getxmlconfigTool_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("disclaimer"); // DISCLAIMER of user/system/desktop afterwards

    const QString before = "old text";
    const QString file = QString::fromUtf8("line one\r\nGrüße <&>\n");
    QTest::newRow("-w") << QStringList{"-w", "user/system/desktop", "DISCLAIMER", "a \"b\" c"} << 0
                        << ""
                        << "a \"b\" c";
    QTest::newRow("-w creates a store")
        << QStringList{"-w", "user/new/store", "DISCLAIMER", "x"} << 0 << "" << before;
    QTest::newRow("-wff") << QStringList{"-wff", "user/system/desktop", "DISCLAIMER", "file.txt"}
                          << 0 << "" << file;
    QTest::newRow("-wff missing file")
        << QStringList{"-wff", "user/system/desktop", "DISCLAIMER", "missing.txt"} << 1 << ""
        << before;
    QTest::newRow("-r") << QStringList{"-r", "user/system/desktop", "DISCLAIMER"} << 0
                        << before + "\n"
                        << before;
    QTest::newRow("-r missing key")
        << QStringList{"-r", "user/system/desktop", "NOPE"} << 1 << "" << before;
    QTest::newRow("-r missing store") << QStringList{"-r", "user/none", "A"} << 1 << "" << before;
    QTest::newRow("usage") << QStringList{"-w", "user/system/desktop", "DISCLAIMER"} << 2 << ""
                           << before;
}

void TestPlatform::getxmlconfigTool()
{
#ifndef USBI_GETXMLCONFIG
    QSKIP("getxmlconfig is built with the host platform only");
#else
    QFETCH(QStringList, args);
    QFETCH(int, status);
    QFETCH(QString, output);
    QFETCH(QString, disclaimer);
    {
        DaxProperties store("user/system/desktop", QString(), true);
        store.SetString("DISCLAIMER", "old text");
        QVERIFY(store.Save());
    }
    writeFile(path("file.txt"), QString::fromUtf8("line one\r\nGrüße <&>\n").toUtf8());

    QProcess tool;
    tool.setWorkingDirectory(m_dir->path());
    tool.start(USBI_GETXMLCONFIG, args);
    QVERIFY(tool.waitForFinished());
    QCOMPARE(tool.exitStatus(), QProcess::NormalExit);
    QCOMPARE(tool.exitCode(), status);
    QCOMPARE(QString::fromUtf8(tool.readAllStandardOutput()), output);

    DaxProperties store("user/system/desktop", QString(), false);
    QVERIFY(store.Load());
    QCOMPARE(store.GetString("DISCLAIMER", QString()), disclaimer);
    if (args.at(1) == "user/new/store") {
        DaxProperties created("user/new/store", QString(), false);
        QVERIFY(created.Load());
        QCOMPARE(created.GetString("DISCLAIMER", QString()), QString("x"));
    }
#endif
}

QTEST_GUILESS_MAIN(TestPlatform)
#include "test_platform.moc"

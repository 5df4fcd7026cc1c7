#include "DaxProperties.h"
#include "DaxRegIni.h"
#include "DaxSystem.h"
#include "SecConfig.h"

#include <QTemporaryDir>
#include <QtTest>

#include <signal.h>

namespace {

const QString hashFile = QStringLiteral("/tmp/config/files/.passwd");
const QString chpasswdLog = QStringLiteral("/var/lib/sim/chpasswd");
const QString desktop = QStringLiteral("user/system/desktop");
const QByteArray header = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<config>";
const QByteArray byHand = header +
                          "<!-- c --><entry key=\"A&amp;B &lt;&quot;\">a &lt;b&gt;</entry>\n"
                          "<entry key=\"true\">true</entry><entry key=\"1\">1</entry>\n"
                          "<entry key=\"0\">0</entry><entry key=\"yes\">yes</entry></config>\n";
const QVector<QPair<QString, bool SecConfig::*>> switches{
    {"protected", &SecConfig::isProtected},         {"enableSSH", &SecConfig::enableSSH},
    {"enableUSB", &SecConfig::enableUSB},           {"enableDisplay", &SecConfig::enableDisplay},
    {"enableKeyboard", &SecConfig::enableKeyboard}, {"enableMouse", &SecConfig::enableMouse},
    {"enableSound", &SecConfig::enableSound},       {"enableNetwork", &SecConfig::enableNetwork},
    {"enablePower", &SecConfig::enablePower},       {"blockPort80", &SecConfig::blockPort80}};

// Store path, its file beforehand (null: none), the WALLPAPER value then saved, whether it
// loads and saves.
using StoreCase = std::tuple<QString, QByteArray, QString, bool, bool>;
// INI file, its content beforehand, access mask, content afterwards (null: the key cannot open);
// shell line, what it left in "out", exit status, DISCLAIMER of the desktop store afterwards.
using Case4 = std::tuple<QString, QByteArray, int, QByteArray>;
// Protected before, stored password, new one, hash file before (null: none, "/": a folder),
// result, what chpasswd read, hash file afterwards (null: none).
using PasswordCase = std::tuple<bool, QString, QString, QByteArray, bool, QByteArray, QByteArray>;

QByteArray readFile(const QString &name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeFile(const QString &name, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(name).absolutePath());
    QFile file(name);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
}

} // namespace

Q_DECLARE_METATYPE(StoreCase)
Q_DECLARE_METATYPE(Case4)
Q_DECLARE_METATYPE(PasswordCase)

// The host platform and the security settings. Stores, key, shell log and INI files live in the
// current folder, a fresh one per test; SecConfig's hash file and chpasswd are the simulated
// client's.
class TestPlatform : public QObject
{
    Q_OBJECT
    QTemporaryDir m_dir;
    int m_tests = 0;
    static QString store(const QString &path) { return "config/" + path + "/config.xml"; }

private slots:
    void init()
    {
        QVERIFY2(qgetenv("USBI_SIM") == "1", "runs inside the simulated client only (sim/run)");
        const QString dir = m_dir.filePath(QString::number(++m_tests));
        QVERIFY(QDir().mkpath(dir) && QDir::setCurrent(dir));
        qputenv("DAX_CONFIG_ROOT", "config");
        qputenv("DAX_SHELL_LOG", "shell.log");
    }

    void storeFiles_data()
    {
        QTest::addColumn<StoreCase>("c");
        const QString a = "/tmp/a b.jpg";
        QTest::newRow("by hand") << StoreCase{desktop, byHand, a, true, true};
        QTest::newRow("missing") << StoreCase{desktop, {}, a, false, true};
        QTest::newRow("empty file") << StoreCase{desktop, "", a, true, true};
        QTest::newRow("xml, non-ASCII, line breaks")
            << StoreCase{desktop, {}, "<b>&amp; 'x' \"y\" ]]> Grüße 😀 1\r\n2\n\t3 \r", 0, 1};
        QTest::newRow("control character") << StoreCase{desktop, byHand, "a\x07", true, false};
        for (const char *bad :
             {"a=1\n", "<config><entry key=\"a\">", "<c/>", "<config><entry/></config>"})
            QTest::newRow(bad) << StoreCase{desktop, bad, a, false, false};
        for (const char *outside : {"../escape", "user/../../escape", "/escape"})
            QTest::newRow(outside) << StoreCase{outside, {}, a, false, false};
    }

    // Other tools write and read the same files. A store this object could not read, or one
    // outside the root, is never written.
    void storeFiles()
    {
        QFETCH(StoreCase, c);
        const auto &[storePath, contents, value, loads, saves] = c;
        const QString file = store(storePath);
        if (!contents.isNull())
            writeFile(file, contents);
        DaxProperties props(storePath, QString(), true);
        QCOMPARE(props.Load(), loads);
        props.SetString("WALLPAPER", value);
        QCOMPARE(props.Save(), saves);
        const QByteArray saved = readFile(file);
        QCOMPARE(QFile::exists(file), saves || !contents.isNull());
        QCOMPARE(saved, saves ? saved : contents);
        DaxProperties reread(storePath, QString(), false);
        QVERIFY2(!saves || (reread.Load() && saved.startsWith(header)), saved.constData());
        QCOMPARE(reread.GetString("WALLPAPER", ""), saves ? value : QString());
        if (!saves || contents != byHand)
            return;
        QVERIFY(saved.contains("<entry key=\"WALLPAPER\">/tmp/a b.jpg</entry>"));
        QCOMPARE(reread.GetString("A&B <\"", ""), QString("a <b>"));
        QVERIFY(reread.GetBoolean("true", false) && reread.GetBoolean("1", false));
        QVERIFY(!reread.GetBoolean("0", true) && !reread.GetBoolean("yes", true));
    }

    // A secret never reaches the file in clear, and only its own key opens it.
    void sealedValues()
    {
        DaxProperties props("system/sec.cfg", QString(), false);
        props.setEncryptedString("password", "s3cret");
        QVERIFY(props.Save() && !readFile(store("system/sec.cfg")).contains("s3cret"));
        QVERIFY(!(QFile::permissions("config/.key") & (QFile::ReadGroup | QFile::ReadOther)));
        qputenv("DAX_KEY_FILE", "other.key");
        QCOMPARE(props.getEncryptedString("password", "none"), QString("none"));
        writeFile("bad.key", "short");
        qputenv("DAX_KEY_FILE", "bad.key");
        props.setEncryptedString("password", "new");
        qunsetenv("DAX_KEY_FILE");
        QVERIFY(readFile("bad.key") == "short" &&
                props.getEncryptedString("password", "") == "s3cret");
    }

    void legacyMode()
    {
        qputenv("DAX_LEGACY_MODE", "1");
        QVERIFY(DaxRegistry::isLegacyMode());
        qputenv("DAX_LEGACY_MODE", "0");
        QVERIFY(!DaxRegistry::isLegacyMode());
    }

    void iniRegistry_data()
    {
        QTest::addColumn<Case4>("c");
        const QByteArray key = "[HKEY_LOCAL_MACHINE\\Software\\Kelto\\Imprivata]\n";
        const QByteArray other = "; sessions\n[HKEY_LOCAL_MACHINE\\Software\\Other]\n"
                                 "Name = spaced value\n\n[Session]\nhost=a\\b\n";
        QTest::newRow("new file") << Case4{
            "s.conf", {}, 0x20006, key + "Background=/b c.png\nCoBranding=/l.png\n"};
        QTest::newRow("others kept, values replaced")
            << Case4{"s.conf", other + key + "Background=/old.png\nX=1\n", 0x20006,
                     other + key + "Background=/b c.png\nX=1\nCoBranding=/l.png\n"};
        QTest::newRow("missing folder") << Case4{"missing/s.conf", {}, 0x20006, {}};
    }

    void iniRegistry()
    {
        QFETCH(Case4, c);
        const auto &[iniFile, before, access, after] = c;
        if (!before.isNull())
            writeFile(iniFile, before);
        DaxRegIni ini;
        ini.SetIniPath(QFile::encodeName(iniFile).constData());
        QCOMPARE(ini.OpenKey("HKEY_LOCAL_MACHINE", "Software\\Kelto\\Imprivata", access) == 0,
                 !after.isNull());
        QCOMPARE(ini.SetSz("Background", "/b c.png") == 0, !after.isNull());
        QCOMPARE(ini.SetSz("CoBranding", "/l.png") == 0, !after.isNull());
        ini.CloseKey();
        QCOMPARE(readFile(iniFile), after);
    }

    void shellRunner_data()
    {
        QTest::addColumn<Case4>("c");
        const QString tool = "getxmlconfig %1 user/system/desktop DISCLAIMER %2";
        QTest::newRow("exit 3") << Case4{"false; exit 3", {}, 3, "old"};
        QTest::newRow("killed") << Case4{"kill -TERM $$; echo y > out", {}, 128 + SIGTERM, "old"};
        // The program left running keeps the shell's output open; the call returns at once.
        QTest::newRow("background") << Case4{"sleep 60 & echo $! > pid", {}, 0, "old"};
        // The simulated client's getxmlconfig shares the stores with the platform.
        QTest::newRow("-w") << Case4{tool.arg("-w", "'a \"b\" c'"), {}, 0, "a \"b\" c"};
        QTest::newRow("-w, no store") << Case4{"rm -r config; " + tool.arg("-w", "x"), {}, 0, "x"};
        QTest::newRow("-wff") << Case4{
            "printf '1\\r\\n<&>ß' >f; " + tool.arg("-wff", "f"), {}, 0, "1\r\n<&>ß"};
        QTest::newRow("-r") << Case4{tool.arg("-r", "> out"), "old\n", 0, "old"};
    }

    // Each line is appended to the shell log before it runs; the shell's status comes back.
    void shellRunner()
    {
        QFETCH(Case4, c);
        const auto &[line, out, status, disclaimer] = c;
        writeFile("shell.log", "earlier\n");
        writeFile(store(desktop), header + "<entry key=\"DISCLAIMER\">old</entry></config>");
        QCOMPARE(DaxSystem::execShell(line), status);
        QCOMPARE(QString::fromUtf8(readFile("shell.log")), "earlier\n" + line + '\n');
        QCOMPARE(readFile("out"), out);
        DaxProperties props(desktop, QString(), false);
        QVERIFY(props.Load() && props.GetString("DISCLAIMER", "").toUtf8() == disclaimer);
        if (const pid_t pid = readFile("pid").trimmed().toInt())
            QVERIFY(::kill(pid, 0) == 0 && ::kill(pid, SIGTERM) == 0);
    }

    void secConfigSwitches_data()
    {
        QTest::addColumn<int>("on");
        for (int i = 0; i < switches.size(); ++i)
            QTest::newRow(qPrintable(switches.at(i).first)) << i;
    }

    // One switch on at a time, so that two keys swapped between Save() and Load() cannot
    // cancel out. Save() writes only its own keys; Load() without a store changes nothing.
    void secConfigSwitches()
    {
        QFETCH(int, on);
        bool SecConfig::*const field = switches.at(on).second;
        SecConfig config;
        config.*field = true;
        config.password = "pa ss;word";
        QTest::ignoreMessage(QtDebugMsg, "SecConfig::Load - system/sec.cfg  does not exist");
        QVERIFY(!config.Load() && config.*field && config.password == "pa ss;word");
        writeFile(store("system/sec.cfg"), header + "<entry key=\"other\">x</entry></config>\n");
        QVERIFY(config.Save() && !readFile(store("system/sec.cfg")).contains("pa ss"));
        DaxProperties props("system/sec.cfg", QString(), false);
        QVERIFY(props.Load() && props.GetString("other", "gone") == "gone");
        SecConfig loaded;
        QVERIFY(loaded.Load() && loaded.password == "pa ss;word");
        for (int i = 0; i < switches.size(); ++i) {
            QCOMPARE(props.GetString(switches[i].first, ""), QString(i == on ? "true" : "false"));
            QCOMPARE(loaded.*switches[i].second, i == on);
        }
    }

    void rootPassword_data()
    {
        QTest::addColumn<PasswordCase>("c");
        const QByteArray abc = "a9993e364706816aba3e25717850c26c9cd0d89d", old(64, 'x');
        const QByteArray reset = "root:k9dwibblexo\n";
        QTest::newRow("unprotected") << PasswordCase{false, "old", "", old, true, reset, {}};
        QTest::newRow("no hash file") << PasswordCase{false, "", "", {}, false, reset, {}};
        QTest::newRow("abc") << PasswordCase{false, "old", "abc", old, true, "root:abc\n", abc};
        QTest::newRow("protected, empty") << PasswordCase{
            true, "", "", old, true, "root:\n", "da39a3ee5e6b4b0d3255bfef95601890afd80709"};
        QTest::newRow("protected, stored")
            << PasswordCase{true, "abc", "", {}, true, "root:abc\n", abc};
        QTest::newRow("hash file unopenable") << PasswordCase{0, "", "abc", "/", 0, {}, {}};
    }

    void rootPassword()
    {
        QFETCH(PasswordCase, c);
        const auto &[wasProtected, stored, newPassword, hashBefore, result, chpasswd, hash] = c;
        QVERIFY((QFile::remove(hashFile) || QDir(hashFile).removeRecursively()));
        QFile::remove(chpasswdLog);
        if (!hashBefore.isNull())
            writeFile(hashBefore == "/" ? hashFile + "/x" : hashFile, hashBefore);
        SecConfig config;
        config.isProtected = wasProtected;
        config.password = stored;
        QCOMPARE(config.setRootPassword(newPassword), result);
        QCOMPARE(QFileInfo(hashFile).isFile() ? readFile(hashFile) : QByteArray(), hash);
        QCOMPARE(readFile(chpasswdLog), chpasswd);
    }
};

QTEST_GUILESS_MAIN(TestPlatform)
#include "test_platform.moc"

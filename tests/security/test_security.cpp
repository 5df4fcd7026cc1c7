#include "SecConfig.h"
#include "SimClient.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtTest>

// SecConfig on the simulated client, where chpasswd is a stand-in that only records the lines
// it reads.
class TestSecurity : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void loadWithoutStoreKeepsFields();
    void saveThenLoadKeepsEachField_data();
    void saveThenLoadKeepsEachField();
    void saveWritesOnlyItsOwnKeys();

    void unprotectedResetsToTheDefaultPassword();
    void unprotectedWithoutHashFile();
    void setRootPassword_data();
    void setRootPassword();
    void unopenableHashFileChangesNothing();
};

namespace {

const QString hashFile = QStringLiteral("/tmp/config/files/.passwd");
const QString storePath = QStringLiteral("system/sec.cfg");

QString storeFile()
{
    return qEnvironmentVariable("DAX_CONFIG_ROOT") + QStringLiteral("/system/sec.cfg/config.xml");
}

QByteArray chpasswdInput()
{
    return simclient::readFile(QStringLiteral("/var/lib/sim/chpasswd"));
}

// The field a key is stored under; every field but the password is a switch.
bool *field(SecConfig &config, const QString &key)
{
    const QHash<QString, bool *> fields{
        {"protected", &config.isProtected},         {"enableSSH", &config.enableSSH},
        {"enableUSB", &config.enableUSB},           {"enableDisplay", &config.enableDisplay},
        {"enableKeyboard", &config.enableKeyboard}, {"enableMouse", &config.enableMouse},
        {"enableSound", &config.enableSound},       {"enableNetwork", &config.enableNetwork},
        {"enablePower", &config.enablePower},       {"blockPort80", &config.blockPort80},
    };
    return fields.value(key);
}

const QStringList switchKeys{"protected",      "enableSSH",   "enableUSB",   "enableDisplay",
                             "enableKeyboard", "enableMouse", "enableSound", "enableNetwork",
                             "enablePower",    "blockPort80"};

} // namespace

void TestSecurity::initTestCase()
{
    simclient::requireSim();
}

void TestSecurity::init()
{
    simclient::clearLogs();
    QFile::remove(QStringLiteral("/var/lib/sim/chpasswd"));
}

void TestSecurity::cleanup()
{
    QFile::remove(storeFile());
    QFile::remove(hashFile);
    QDir(hashFile).removeRecursively();
}

void TestSecurity::loadWithoutStoreKeepsFields()
{
    QVERIFY(!QFile::exists(storeFile()));
    SecConfig config;
    config.isProtected = true;
    config.password = QStringLiteral("kept");
    config.enableMouse = true;
    QTest::ignoreMessage(QtDebugMsg, "SecConfig::Load - system/sec.cfg  does not exist");
    QVERIFY(!config.Load());
    QVERIFY(config.isProtected);
    QCOMPARE(config.password, QStringLiteral("kept"));
    QVERIFY(config.enableMouse);
    QVERIFY(!config.enableSound);
}

void TestSecurity::saveThenLoadKeepsEachField_data()
{
    QTest::addColumn<QString>("key");
    for (const QString &key : switchKeys)
        QTest::newRow(qPrintable(key)) << key;
}

// One switch on at a time, checked in the store itself and after loading it back, so that two
// keys swapped between Save() and Load() cannot cancel out.
void TestSecurity::saveThenLoadKeepsEachField()
{
    QFETCH(QString, key);
    SecConfig saved;
    *field(saved, key) = true;
    saved.password = QStringLiteral("pa ss;word");
    QVERIFY(saved.Save());

    for (const QString &other : switchKeys)
        QCOMPARE(simclient::storeValue(storePath, other), other == key ? "true" : "false");
    const QString storedPassword = simclient::storeValue(storePath, QStringLiteral("password"));
    QVERIFY(!storedPassword.isEmpty());
    QVERIFY(!storedPassword.contains(QStringLiteral("pa ss")));

    SecConfig loaded;
    loaded.password = QStringLiteral("before");
    QVERIFY(loaded.Load());
    for (const QString &other : switchKeys)
        QCOMPARE(*field(loaded, other), other == key);
    QCOMPARE(loaded.password, QStringLiteral("pa ss;word"));
}

void TestSecurity::saveWritesOnlyItsOwnKeys()
{
    QDir().mkpath(QFileInfo(storeFile()).absolutePath());
    QFile file(storeFile());
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<config>\n"
               "    <entry key=\"other\">x</entry>\n</config>\n");
    file.close();

    QVERIFY(SecConfig().Save());
    QCOMPARE(simclient::storeValue(storePath, QStringLiteral("other"), QStringLiteral("gone")),
             QStringLiteral("gone"));
    QCOMPARE(simclient::storeValue(storePath, QStringLiteral("protected")),
             QStringLiteral("false"));
}

void TestSecurity::unprotectedResetsToTheDefaultPassword()
{
    QFile old(hashFile);
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.close();

    SecConfig config;
    QVERIFY(config.setRootPassword(QString()));
    QVERIFY(!QFile::exists(hashFile));
    QVERIFY(!config.isProtected);
    QCOMPARE(simclient::shellLog(), QStringList{"echo root:k9dwibblexo | chpasswd"});
    QCOMPARE(chpasswdInput(), QByteArray("root:k9dwibblexo\n"));
}

void TestSecurity::unprotectedWithoutHashFile()
{
    SecConfig config;
    QVERIFY(!config.setRootPassword(QString()));
    QCOMPARE(simclient::shellLog(), QStringList{"echo root:k9dwibblexo | chpasswd"});
}

void TestSecurity::setRootPassword_data()
{
    QTest::addColumn<bool>("wasProtected");
    QTest::addColumn<QString>("storedPassword");
    QTest::addColumn<QString>("newPassword");
    QTest::addColumn<QString>("password");
    QTest::addColumn<QByteArray>("digest");

    QTest::newRow("abc") << false << "old"
                         << "abc"
                         << "abc" << QByteArray("a9993e364706816aba3e25717850c26c9cd0d89d");
    QTest::newRow("protected, empty password")
        << true << ""
        << ""
        << "" << QByteArray("da39a3ee5e6b4b0d3255bfef95601890afd80709");
    QTest::newRow("protected, stored password kept")
        << true << "abc"
        << ""
        << "abc" << QByteArray("a9993e364706816aba3e25717850c26c9cd0d89d");
}

void TestSecurity::setRootPassword()
{
    QFETCH(bool, wasProtected);
    QFETCH(QString, storedPassword);
    QFETCH(QString, newPassword);
    QFETCH(QString, password);
    QFETCH(QByteArray, digest);

    QFile old(hashFile);
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.write("a much longer previous content than any digest, truncated on write\n");
    old.close();

    SecConfig config;
    config.isProtected = wasProtected;
    config.password = storedPassword;
    QTest::ignoreMessage(QtDebugMsg, ("hash : \"" + digest + "\"").constData());
    QVERIFY(config.setRootPassword(newPassword));

    QVERIFY(config.isProtected);
    QCOMPARE(config.password, password);
    QCOMPARE(simclient::readFile(hashFile), digest);
    QCOMPARE(simclient::shellLog(),
             QStringList{QStringLiteral("echo root:") + password + QStringLiteral("| chpasswd")});
    QCOMPARE(simclient::calls(QStringLiteral("chpasswd")), QStringList{"chpasswd"});
    QCOMPARE(chpasswdInput(), "root:" + password.toUtf8() + "\n");
}

void TestSecurity::unopenableHashFileChangesNothing()
{
    QVERIFY(QDir().mkpath(hashFile));
    SecConfig config;
    QVERIFY(!config.setRootPassword(QStringLiteral("abc")));
    QVERIFY(config.isProtected);
    QVERIFY(config.password.isEmpty());
    QVERIFY(simclient::shellLog().isEmpty());
}

QTEST_GUILESS_MAIN(TestSecurity)
#include "test_security.moc"

#include "ExpectedCommands.h"
#include "InstallDriver.h"
#include "PackageTypes.h"
#include "RcList.h"
#include "SimClient.h"
#include "StickSnapshot.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QtTest>

#include <fcntl.h>
#include <unistd.h>

#include <functional>

// Faults an administrator's stick or the client can bring, all on the simulated client: the
// client's tools missing or failing, a read-only stick, a full configuration tree, files that
// go away or turn unreadable after the scan, a 10,000-file stick, names of 255 bytes and names
// that are not UTF-8, broken style sheets, and file names built to inject commands. Every
// installation must end with "Package(s) Installed" and the main window back, run exactly the
// commands of its type and leave the stick as it was.
class TestFaults : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void clientToolsMissing_data() { everyType(); }
    void clientToolsMissing();
    void clientToolsFail_data() { everyType(); }
    void clientToolsFail();
    void readOnlyStick_data() { everyType(); }
    void readOnlyStick();
    void fullConfigurationTree_data() { everyType(); }
    void fullConfigurationTree();
    void fileChangedAfterScan_data();
    void fileChangedAfterScan();

    void tenThousandFileStick_data();
    void tenThousandFileStick();
    void longNames_data();
    void longNames();
    void brokenStyleSheet_data();
    void brokenStyleSheet();

    void hostileNamesAreNeverOffered();
    void offeredCorpusNamesInstallAsTheirTemplatesSay_data();
    void offeredCorpusNamesInstallAsTheirTemplatesSay();

    void wholeProgramShowsItsWindow_data();
    void wholeProgramShowsItsWindow();

private:
    enum class Tools { Present, Missing };
    // Whether the chosen files still install, or are left out just before the installer runs.
    enum class Chosen { Install, LeftOut };

    static void everyType();
    // A fresh stick holding the sample file of the type, scanned, then installed through the
    // window; prepare runs before the scan, afterScan once the file is chosen.
    void installSample(
        const QString &type, Tools tools,
        const std::function<void(const QString &dir)> &prepare = {},
        const std::function<void(const QString &dir, const QString &name)> &afterScan = {},
        Chosen chosen = Chosen::Install);
    // Installs the files of the type from the scanned stick and checks everything an
    // installation must hold. afterScan runs just before Install is pressed; the stick is
    // compared with its state after that.
    void installAndCheck(RcList &list, const QString &type, const QStringList &files,
                         Tools tools = Tools::Present, const std::function<void()> &afterScan = {},
                         Chosen chosen = Chosen::Install);
    void checkCommands(const QString &type, const QString &dir, const QStringList &files,
                       Tools tools);

    void onCleanup(const std::function<void()> &undo) { undos.prepend(undo); }
    void withoutClientTools();
    void withFailingClientTools();
    void mountReadOnly(const QString &dir);
    void mountFullConfigurationTree();
    void setStyleSheet(const QByteArray &content);
    QString corpusStick();
    QString tenThousandFiles();
    void startXServer();

    InstallDriver *driver = nullptr;
    QList<std::function<void()>> undos;
    QString workingDir;
    QByteArray originalStyleSheet;
    QString corpus;
    QString manyFiles;
    QProcess *xServer = nullptr;
    QString display;
};

namespace {

const QStringList clientTools{
    "certs",       "ppddb",         "tar-upgrade",    "ovpn2xml", "getxmlconfig",
    "setwp",       "rdpimport",     "reload_desktop", "freeze",   "vmw-desktop",
    "rdp-desktop", "rdp2x-desktop", "rdp-desktop.sh",
};
// The client's tools the installers call by their full path.
const QStringList toolsInUsrBin{"rdpimport", "reload_desktop"};
const QString styleSheetPath = QStringLiteral("/tmp/.config/default.css");

// A client tool that records its call the way the stand-ins do, then fails.
const char *const failingTool = R"(#!/bin/bash
line=%1
for a; do a=${a//\\/\\\\}; a=${a//]/\\]}; line+=" [${a//$'\n'/\\n}]"; done
printf '%s\n' "$line" >>"$SIM_CALL_LOG"
exit 1
)";

// One file of every package type: blanks where a template quotes the name and where it does
// not, so that both kinds of command are run.
const QMap<QString, QString> samples{
    {"ppd", "Office Printer.ppd"},      {"cert", "root ca.crt"},
    {"update", "firmware-2.1.0.tar"},   {"ScreenConnect", "ScreenConnect.ClientSetup.deb"},
    {"wallpaper", "Lake View.png"},     {"icon", "tile.bmp"},
    {"desktop", "beach.jpg"},           {"screensaver", "beach.jpg"},
    {"iwallpaper", "banner.gif"},       {"ilogo", "logo.png"},
    {"iproxcard", "card.png"},          {"openvpn", "Branch Office.ovpn"},
    {"rdpfile", "Terminal Server.rdp"}, {"disclaimer", "disclaimer.txt"},
};

QByteArray sampleContent(const QString &name)
{
    if (name.endsWith(QLatin1String(".ppd")))
        return "*PPD-Adobe: \"4.3\"\n*ModelName: \"Office Printer\"\n";
    return "content of " + name.toUtf8() + '\n';
}

RcList scanned(const QString &dir)
{
    RcList list(dir);
    scanEveryType(list);
    return list;
}

// Runs a command line of the test's own set-up; false when it fails.
bool shell(const QString &commandLine)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.start(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), commandLine});
    return process.waitForFinished(-1) && process.exitStatus() == QProcess::NormalExit &&
           process.exitCode() == 0;
}

QString shellQuoted(QString text)
{
    return QLatin1Char('\'') + text.replace(QLatin1Char('\''), QLatin1String("'\\''")) +
           QLatin1Char('\'');
}

bool writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
           file.write(content) == content.size() && file.flush();
}

// A file whose name is given as raw bytes, which need not be UTF-8.
bool writeRawName(const QByteArray &path, const QByteArray &content)
{
    const int fd = ::open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0)
        return false;
    const bool written = ::write(fd, content.constData(), size_t(content.size())) == content.size();
    return ::close(fd) == 0 && written;
}

bool matchesType(const QString &type, const QString &name)
{
    for (const QString &pattern : PackageTypes::find(type)->patternList()) {
        const QRegularExpression re(QRegularExpression::wildcardToRegularExpression(pattern),
                                    QRegularExpression::CaseInsensitiveOption);
        if (re.match(name).hasMatch())
            return true;
    }
    return false;
}

// Whether needles form a subsequence of haystack.
bool isSubsequence(const QStringList &needles, const QStringList &haystack)
{
    int at = 0;
    for (const QString &needle : needles) {
        while (at < haystack.size() && haystack.at(at) != needle)
            ++at;
        if (at == haystack.size())
            return false;
        ++at;
    }
    return true;
}

QStringList sorted(QStringList list)
{
    list.sort();
    return list;
}

// A name of exactly 255 bytes in UTF-8, with blanks and non-ASCII letters, ending in suffix.
QString longUtf8Name(const QString &suffix)
{
    QString name = QStringLiteral("Sehr lange Datei ");
    while ((name + QStringLiteral("é") + suffix).toUtf8().size() <= 255)
        name += QStringLiteral("é");
    while ((name + suffix).toUtf8().size() < 255)
        name += QLatin1Char('x');
    return name + suffix;
}

// A name of exactly 255 bytes written in Latin-1, so not valid UTF-8.
QByteArray longLatin1Name(const QByteArray &suffix)
{
    QByteArray name = "Caf\xe9 cr\xe8me ";
    while (name.size() + suffix.size() < 255)
        name += '\xe9';
    return name + suffix;
}

// Names built to end, chain, substitute or redirect a command: the scan must skip them all.
const QStringList hostileNames{
    "$(touch pwned).jpg",
    "$(freeze).png",
    "`touch pwned`.jpg",
    "a`reload_desktop`b.png",
    "x;touch pwned;.jpg",
    "x; reload_desktop #.png",
    "a&touch pwned&.jpg",
    "a && freeze.png",
    "a|touch pwned.jpg",
    "a || freeze .png",
    "a<b.jpg",
    "a>pwned.jpg",
    ">pwned.png",
    "a\nb.jpg",
    "a\rb.png",
    "x\ntouch pwned\n.jpg",
    "${IFS}touch${IFS}pwned.jpg",
    "\"$(touch pwned)\".jpg",
    "'$(touch pwned)'.png",
    "*$(freeze)*.jpg",
    "$HOME.jpg",
    "a;b.crt",
    "`freeze`.der",
    "$(freeze).rdp",
    "x|freeze.ovpn",
    "a>b.txt",
    "$(touch pwned).tar",
    "a&b.ppd",
    "it's $(freeze).png",
    "\"; freeze; \".jpg",
    // Double quotes and backslashes would break out of a quoted path and make the shell act
    // on another file: a" "b.crt would have the stick's ab.crt removed.
    "say \"cheese\".jpg",
    "back\\slash.jpg",
    "a\\\".jpg",
    "a\" \"b.png",
    "\"q\".crt",
    "a\" \"b.crt",
    "a\"b.tar",
    // A leading '-' reaches a client tool as an option.
    "-rf.jpg",
    "-x.crt",
};

// Names that are offered: single quotes, glob characters, blanks, tabs and parentheses cannot
// start another command, and where a template leaves the path bare it is quoted.
const QStringList offeredNames{
    "plain.jpg",  "Lake View.jpg", "it's.jpg",      "*.jpg",     "[a].jpg", "photo (1).jpg",
    "{a,b}.jpg",  "#hash.jpg",     "tab\there.jpg", "~root.jpg", "?.png",   "(x).png",
    "quote'.png", "glob*star.png", "my cert.crt",   "it's.crt",  "(p).ppd", "a b.rdp",
    "*.rdp",      "x'y.ovpn",      "a b.txt",       "*.txt",     "[x].tar",
};

// The types a corpus name is installed under: every type it is offered for, except the two
// Imprivata kinds that run the same routine as the Imprivata wallpaper.
QStringList corpusTypes(const QString &name)
{
    QStringList types;
    for (const PackageType &type : PackageTypes::all()) {
        const QString key = type.typeKey();
        if (key != QLatin1String("ilogo") && key != QLatin1String("iproxcard") &&
            matchesType(key, name))
            types << key;
    }
    return types;
}

} // namespace

void TestFaults::initTestCase()
{
    simclient::requireSim();
    // The expected commands are those of a client without the OS-variant marker and without
    // a modality file.
    QVERIFY(!QFile::exists(QStringLiteral("/tmp/.mvyx64")));
    QVERIFY(!QFile::exists(QStringLiteral("/boot/modality")));
    for (const PackageType &type : PackageTypes::all())
        QVERIFY2(samples.contains(type.typeKey()), type.key);
    originalStyleSheet = simclient::readFile(styleSheetPath);

    // Commands that a name could redirect or retarget would write into the working folder:
    // it must stay empty.
    workingDir = QStringLiteral("/tmp/faults-cwd");
    QVERIFY(QDir().mkpath(workingDir));
    QVERIFY(QDir::setCurrent(workingDir));
    driver = new InstallDriver;
}

void TestFaults::init()
{
    simclient::clearLogs();
}

void TestFaults::cleanup()
{
    const QList<std::function<void()>> pending = undos;
    undos.clear();
    for (const auto &undo : pending)
        undo();
    const QFileInfoList written =
        QDir(workingDir)
            .entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    QStringList names;
    for (const QFileInfo &entry : written) {
        names << entry.fileName();
        // Emptied, so that the next case starts clean.
        if (entry.isDir() && !entry.isSymLink())
            QDir(entry.filePath()).removeRecursively();
        else
            QFile::remove(entry.filePath());
    }
    QVERIFY2(names.isEmpty(),
             qPrintable(QStringLiteral("commands wrote into the working folder: ") +
                        names.join(QLatin1String(", "))));
}

void TestFaults::cleanupTestCase()
{
    delete driver;
    if (xServer) {
        xServer->terminate();
        xServer->waitForFinished(10000);
        delete xServer;
    }
}

void TestFaults::everyType()
{
    QTest::addColumn<QString>("type");
    for (const PackageType &type : PackageTypes::all())
        QTest::newRow(type.key) << type.typeKey();
}

void TestFaults::installAndCheck(RcList &list, const QString &type, const QStringList &files,
                                 Tools tools, const std::function<void()> &afterScan, Chosen chosen)
{
    StickSnapshot before = snapshotStick(list.dir);
    simclient::clearLogs();
    const InstallDriver::Outcome seen = driver->install(list, type, files, [&] {
        if (afterScan)
            afterScan();
        before = snapshotStick(list.dir);
    });
    if (QTest::currentTestFailed())
        return;

    QCOMPARE(seen.dialogsShown, 1);
    const QString progress = PackageTypes::find(type)->progressLabel();
    QCOMPARE(seen.firstText, progress.isEmpty() ? QStringLiteral("Installing...") : progress);
    QCOMPARE(seen.lastText, QStringLiteral("Package(s) Installed"));
    QVERIFY(seen.windowHiddenWhileDialogShown);
    QVERIFY(seen.windowVisibleAfter);

    checkCommands(type, list.dir, chosen == Chosen::Install ? files : QStringList(), tools);
    if (QTest::currentTestFailed())
        return;

    const QStringList changes = snapshotDifferences(before, snapshotStick(list.dir));
    QVERIFY2(changes.isEmpty(), qPrintable(changes.join(QLatin1String("; "))));
}

void TestFaults::checkCommands(const QString &type, const QString &dir, const QStringList &files,
                               Tools tools)
{
    const ExpectedRun expected = expectedRun(type, dir, files);
    QCOMPARE(simclient::shellLog(), expected.shell);
    if (tools == Tools::Missing) {
        QCOMPARE(simclient::calls(), QStringList());
        return;
    }

    // Tools started with "&" record their call on their own time.
    QTRY_VERIFY_WITH_TIMEOUT(isSubsequence(sorted(expected.background), sorted(simclient::calls())),
                             60000);
    QStringList inOrder;
    QStringList background;
    QStringList backgroundTools;
    for (const QString &line : expected.background)
        backgroundTools << toolOf(line);
    for (const QString &line : simclient::calls())
        (backgroundTools.contains(toolOf(line)) ? background : inOrder) << line;
    QCOMPARE(sorted(background), sorted(expected.background));

    QCOMPARE(inOrder, expected.calls);
}

void TestFaults::installSample(
    const QString &type, Tools tools, const std::function<void(const QString &)> &prepare,
    const std::function<void(const QString &, const QString &)> &afterScan, Chosen chosen)
{
    const QString name = samples.value(type);
    const QString dir = simclient::makeStick({name}, {sampleContent(name)});
    if (prepare)
        prepare(dir);
    if (QTest::currentTestFailed())
        return;
    RcList list = scanned(dir);
    QCOMPARE(list.filesOfType(type), QStringList{name});
    installAndCheck(
        list, type, {name}, tools,
        [&] {
            if (afterScan)
                afterScan(dir, name);
        },
        chosen);
}

void TestFaults::withoutClientTools()
{
    const QByteArray path = qgetenv("PATH");
    QStringList kept;
    for (const QString &dir : QString::fromLocal8Bit(path).split(QLatin1Char(':'))) {
        if (!QFileInfo::exists(dir + QLatin1String("/freeze")))
            kept << dir;
    }
    qputenv("PATH", kept.join(QLatin1Char(':')).toLocal8Bit());
    onCleanup([path] { qputenv("PATH", path); });
    for (const QString &tool : toolsInUsrBin) {
        const QString at = QStringLiteral("/usr/bin/") + tool;
        QVERIFY(QFile::rename(at, at + QLatin1String(".away")));
        onCleanup([at] { QFile::rename(at + QLatin1String(".away"), at); });
    }
    for (const QString &tool : clientTools)
        QVERIFY2(QStandardPaths::findExecutable(tool, kept).isEmpty(), qPrintable(tool));
}

void TestFaults::withFailingClientTools()
{
    const QString dir = QStringLiteral("/tmp/failing-tools");
    QVERIFY(QDir().mkpath(dir));
    for (const QString &tool : clientTools) {
        const QByteArray script = QString::fromLatin1(failingTool).arg(tool).toUtf8();
        const QString at = dir + QLatin1Char('/') + tool;
        QVERIFY(writeFile(at, script));
        QVERIFY(QFile::setPermissions(at, QFile::permissions(at) | QFile::ExeOwner |
                                              QFile::ExeGroup | QFile::ExeOther));
    }
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(dir) + ':' + path);
    onCleanup([path] { qputenv("PATH", path); });
    for (const QString &tool : toolsInUsrBin) {
        const QString at = QStringLiteral("/usr/bin/") + tool;
        QVERIFY(QFile::rename(at, at + QLatin1String(".away")));
        QVERIFY(QFile::copy(dir + QLatin1Char('/') + tool, at));
        onCleanup([at] {
            QFile::remove(at);
            QFile::rename(at + QLatin1String(".away"), at);
        });
    }
}

void TestFaults::mountReadOnly(const QString &dir)
{
    QVERIFY(shell(
        QStringLiteral("mount --bind %1 %1 && mount -o remount,bind,ro %1").arg(shellQuoted(dir))));
    onCleanup([dir] { QVERIFY(shell(QStringLiteral("umount %1").arg(shellQuoted(dir)))); });
    QVERIFY(!QFile(dir + QLatin1String("/probe")).open(QIODevice::WriteOnly));
}

void TestFaults::mountFullConfigurationTree()
{
    QVERIFY(shell(QStringLiteral("mount -t tmpfs -o size=64k usbi-full /tmp/config && "
                                 "mkdir -p /tmp/config/files/cacerts /tmp/config/files/ppd")));
    onCleanup([] { QVERIFY(shell(QStringLiteral("umount /tmp/config"))); });
    QFile filler(QStringLiteral("/tmp/config/files/filler"));
    QVERIFY(filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    const QByteArray block(4096, 'x');
    while (filler.write(block) == block.size()) {
    }
    filler.close();
    QVERIFY(!writeFile(QStringLiteral("/tmp/config/files/probe"), "x"));
}

void TestFaults::setStyleSheet(const QByteArray &content)
{
    QVERIFY(writeFile(styleSheetPath, content));
    const QByteArray original = originalStyleSheet;
    onCleanup([original] { writeFile(styleSheetPath, original); });
}

void TestFaults::clientToolsMissing()
{
    QFETCH(QString, type);
    withoutClientTools();
    if (QTest::currentTestFailed())
        return;
    // The stand-ins keep their state there: none of them may have run.
    const StickSnapshot state = snapshotStick(QStringLiteral("/var/lib/sim"));
    installSample(type, Tools::Missing);
    QCOMPARE(snapshotStick(QStringLiteral("/var/lib/sim")), state);
}

void TestFaults::clientToolsFail()
{
    QFETCH(QString, type);
    withFailingClientTools();
    if (QTest::currentTestFailed())
        return;
    // The stand-ins keep their state there: only the failing tools may have run.
    const StickSnapshot state = snapshotStick(QStringLiteral("/var/lib/sim"));
    installSample(type, Tools::Present);
    QCOMPARE(snapshotStick(QStringLiteral("/var/lib/sim")), state);
}

void TestFaults::readOnlyStick()
{
    QFETCH(QString, type);
    installSample(type, Tools::Present, [this](const QString &dir) { mountReadOnly(dir); });
}

void TestFaults::fullConfigurationTree()
{
    QFETCH(QString, type);
    mountFullConfigurationTree();
    if (!QTest::currentTestFailed())
        installSample(type, Tools::Present);
}

void TestFaults::fileChangedAfterScan_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("change");
    for (const char *change : {"removed", "dangling link", "folder", "read error"}) {
        for (const PackageType &type : PackageTypes::all())
            QTest::addRow("%s, %s", change, type.key) << type.typeKey() << change;
    }
}

// Between the scan and the installation the file is removed, a folder takes its place, it
// becomes a file whose reading fails at offset 0 as a faulty stick's does (the test's own memory,
// mounted over it), or the link it was loses its target: such a link is left out of the job
// and nothing runs.
void TestFaults::fileChangedAfterScan()
{
    QFETCH(QString, type);
    QFETCH(QString, change);
    const bool link = change == QLatin1String("dangling link");
    installSample(
        type, Tools::Present,
        [link](const QString &dir) {
            if (!link)
                return;
            const QString file = dir + QLatin1Char('/') + QDir(dir).entryList(QDir::Files).first();
            QVERIFY(QFile::rename(file, dir + QLatin1String("/.target")));
            QVERIFY(QFile::link(QStringLiteral(".target"), file));
        },
        [this, change](const QString &dir, const QString &name) {
            const QString file = dir + QLatin1Char('/') + name;
            if (change == QLatin1String("dangling link")) {
                QVERIFY(QFile::remove(dir + QLatin1String("/.target")));
                return;
            }
            QVERIFY(QFile::remove(file));
            if (change == QLatin1String("folder")) {
                QVERIFY(QDir().mkdir(file));
            } else if (change == QLatin1String("read error")) {
                QVERIFY(writeFile(file, {}));
                QVERIFY(shell(QStringLiteral("mount --bind /proc/%1/mem %2")
                                  .arg(QCoreApplication::applicationPid())
                                  .arg(shellQuoted(file))));
                onCleanup([file] { QVERIFY(shell("umount " + shellQuoted(file))); });
            }
        },
        link ? Chosen::LeftOut : Chosen::Install);
}

QString TestFaults::tenThousandFiles()
{
    if (!manyFiles.isEmpty())
        return manyFiles;
    const QString dir = QStringLiteral("/tmp/sticks/ten-thousand");
    QDir().mkpath(dir);
    for (int i = 0; i < 9980; ++i)
        writeFile(dir + QStringLiteral("/picture %1.jpg").arg(i, 5, 10, QLatin1Char('0')),
                  QByteArray::number(i));
    for (int i = 0; i < 10; ++i) {
        writeFile(dir + QStringLiteral("/driver %1.ppd").arg(i),
                  sampleContent(QStringLiteral("x.ppd")));
        writeFile(dir + QStringLiteral("/note %1.txt").arg(i), QByteArray::number(i));
    }
    if (QDir(dir).entryList(QDir::Files).size() == 10000)
        manyFiles = dir;
    return manyFiles;
}

void TestFaults::tenThousandFileStick_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QStringList>("files");
    QTest::newRow("last picture as wallpaper") << "wallpaper" << QStringList{"picture 09979.jpg"};
    QTest::newRow("last picture as desktop") << "desktop" << QStringList{"picture 09979.jpg"};
    QStringList drivers;
    for (int i = 0; i < 10; ++i)
        drivers << QStringLiteral("driver %1.ppd").arg(i);
    QTest::newRow("every driver") << "ppd" << drivers;
    QTest::newRow("disclaimer") << "disclaimer" << QStringList{"note 9.txt"};
}

void TestFaults::tenThousandFileStick()
{
    QFETCH(QString, type);
    QFETCH(QStringList, files);
    const QString dir = tenThousandFiles();
    QVERIFY(!dir.isEmpty());
    RcList list = scanned(dir);
    QCOMPARE(list.filesOfType(QStringLiteral("wallpaper")).size(), 9980);
    QCOMPARE(list.entries.size(), 5 * 9980 + 10 + 10);
    installAndCheck(list, type, files);
}

void TestFaults::longNames_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<bool>("latin1");
    for (const bool latin1 : {false, true}) {
        for (const PackageType &type : PackageTypes::all()) {
            // Its one pattern is a full name.
            if (type.routine == InstallerRoutine::ScreenConnect)
                continue;
            QTest::addRow("%s, %s", latin1 ? "Latin-1" : "UTF-8", type.key)
                << type.typeKey() << latin1;
        }
    }
}

// Names of 255 bytes, the longest a file system takes. A name in Latin-1 bytes is not UTF-8:
// the toolkit cannot spell it and leaves it out of the listing, so it is never offered, and the
// other file of the stick installs as usual.
void TestFaults::longNames()
{
    QFETCH(QString, type);
    QFETCH(bool, latin1);
    const QString suffix = PackageTypes::find(type)->patternList().first().mid(1);
    const QString dir = simclient::makeStick({});
    QString offered;
    if (latin1) {
        const QByteArray name = longLatin1Name(suffix.toLatin1());
        QCOMPARE(name.size(), 255);
        QVERIFY(writeRawName(QFile::encodeName(dir) + '/' + name, "latin-1 " + name));
        offered = QStringLiteral("ordinary") + suffix;
        QVERIFY(writeFile(dir + QLatin1Char('/') + offered, "ordinary"));
    } else {
        offered = longUtf8Name(suffix);
        QCOMPARE(offered.toUtf8().size(), 255);
        QVERIFY(writeFile(dir + QLatin1Char('/') + offered, "utf-8 " + offered.toUtf8()));
    }
    RcList list = scanned(dir);
    QCOMPARE(list.filesOfType(type), QStringList{offered});
    installAndCheck(list, type, {offered});
}

void TestFaults::brokenStyleSheet_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("applied");
    QTest::newRow("zero byte") << QByteArray("QPushButton { color: navy; }\0QWidget { bad", 42)
                               << "QPushButton { color: navy; }";
    QTest::newRow("invalid syntax") << QByteArray("QWidget { color: ; background: url( }}} {{")
                                    << "QWidget { color: ; background: url( }}} {{";
    QTest::newRow("binary") << QByteArray("\xff\xfe\x01{{{\x80\x81\xe9", 9)
                            << QString::fromLatin1("\xff\xfe\x01{{{\x80\x81\xe9");
}

// The client's shared style sheet is read up to its first zero byte; a sheet the toolkit
// cannot parse leaves the default look, and both windows work as usual.
void TestFaults::brokenStyleSheet()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, applied);
    setStyleSheet(content);
    const QString dir = simclient::makeStick({"beach.jpg"});
    RcList list = scanned(dir);
    StickSnapshot before = snapshotStick(dir);
    const InstallDriver::Outcome seen =
        driver->install(list, QStringLiteral("wallpaper"), {QStringLiteral("beach.jpg")});
    if (QTest::currentTestFailed())
        return;
    QCOMPARE(seen.windowStyleSheet, applied);
    QCOMPARE(seen.dialogStyleSheet, applied);
    QCOMPARE(seen.lastText, QStringLiteral("Package(s) Installed"));
    QVERIFY(seen.windowVisibleAfter);
    checkCommands(QStringLiteral("wallpaper"), dir, {QStringLiteral("beach.jpg")}, Tools::Present);
    QVERIFY(snapshotDifferences(before, snapshotStick(dir)).isEmpty());
}

QString TestFaults::corpusStick()
{
    if (!corpus.isEmpty())
        return corpus;
    const QString dir = simclient::makeStick({});
    for (const QString &name : hostileNames + offeredNames)
        writeFile(dir + QLatin1Char('/') + name, "corpus file " + name.toUtf8());
    if (QDir(dir).entryList(QDir::Files).size() == hostileNames.size() + offeredNames.size())
        corpus = dir;
    return corpus;
}

void TestFaults::hostileNamesAreNeverOffered()
{
    QVERIFY(hostileNames.size() + offeredNames.size() >= 30);
    const QString dir = corpusStick();
    QVERIFY(!dir.isEmpty());
    RcList list = scanned(dir);
    const QMap<QString, QStringList> shown = InstallDriver::offered(list);
    for (const PackageType &type : PackageTypes::all()) {
        QStringList expected;
        for (const QString &name : offeredNames) {
            if (matchesType(type.typeKey(), name))
                expected << name;
        }
        QCOMPARE(sorted(list.filesOfType(type.typeKey())), sorted(expected));
        QCOMPARE(sorted(shown.value(type.typeKey())), sorted(expected));
    }
    for (const RcEntry &entry : qAsConst(list.entries))
        QVERIFY2(!hostileNames.contains(entry.file), qPrintable(entry.file));
}

void TestFaults::offeredCorpusNamesInstallAsTheirTemplatesSay_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("name");
    for (const QString &name : offeredNames) {
        QString tag = name;
        tag.replace(QLatin1Char('\t'), QLatin1String("\\t"));
        for (const QString &type : corpusTypes(name))
            QTest::addRow("%s as %s", qPrintable(tag), qPrintable(type)) << type << name;
    }
}

// Each offered name of the corpus, installed from the stick that also holds the hostile
// names: the shell runs exactly the type's templates filled with the name, the tools receive
// no other calls, and neither the stick nor the working folder changes.
void TestFaults::offeredCorpusNamesInstallAsTheirTemplatesSay()
{
    QFETCH(QString, type);
    QFETCH(QString, name);
    const QString dir = corpusStick();
    QVERIFY(!dir.isEmpty());
    RcList list = scanned(dir);
    installAndCheck(list, type, {name});
}

void TestFaults::startXServer()
{
    if (xServer)
        return;
    if (QStandardPaths::findExecutable(QStringLiteral("Xvfb")).isEmpty() ||
        QStandardPaths::findExecutable(QStringLiteral("xwininfo")).isEmpty())
        QSKIP("whole-program runs need Xvfb and xwininfo (packages xvfb, x11-utils)");
    display = QStringLiteral(":57");
    xServer = new QProcess;
    xServer->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    // -noreset: the server stays up when the last program closes its connection.
    xServer->start(QStringLiteral("Xvfb"), {display, QStringLiteral("-nolisten"),
                                            QStringLiteral("tcp"), QStringLiteral("-noreset")});
    QVERIFY(xServer->waitForStarted());
    auto ready = [this] {
        QProcess probe;
        probe.setStandardOutputFile(QProcess::nullDevice());
        probe.setStandardErrorFile(QProcess::nullDevice());
        probe.start(QStringLiteral("xdpyinfo"), {QStringLiteral("-display"), display});
        return probe.waitForFinished(-1) && probe.exitStatus() == QProcess::NormalExit &&
               probe.exitCode() == 0;
    };
    QTRY_VERIFY_WITH_TIMEOUT(ready() || xServer->state() == QProcess::NotRunning, 60000);
    QCOMPARE(xServer->state(), QProcess::Running);
}

void TestFaults::wholeProgramShowsItsWindow_data()
{
    QTest::addColumn<QString>("stick");
    QTest::addColumn<QByteArray>("styleSheet");
    QTest::newRow("style sheet with a zero byte")
        << "sample" << QByteArray("QPushButton { color: navy; }\0{{{", 32);
    QTest::newRow("style sheet with invalid syntax")
        << "sample" << QByteArray("QWidget { color: ; background: url( }}} {{");
    QTest::newRow("10,000-file stick") << "ten thousand" << QByteArray();
    QTest::newRow("hostile-name corpus") << "corpus" << QByteArray();
}

// The built program, started on a stick under an X server of the simulated client, maps its
// main window and keeps running until it is ended.
void TestFaults::wholeProgramShowsItsWindow()
{
    QFETCH(QString, stick);
    QFETCH(QByteArray, styleSheet);
    startXServer();
    if (QTest::currentTestFailed() || !xServer)
        return;
    const QString program =
        QString::fromLocal8Bit(qgetenv("USBI_BINARY_DIR")) + QLatin1String("/usb-installer");
    QVERIFY2(QFileInfo(program).isExecutable(), qPrintable(program));
    if (!styleSheet.isNull())
        setStyleSheet(styleSheet);

    QString dir;
    if (stick == QLatin1String("ten thousand"))
        dir = tenThousandFiles();
    else if (stick == QLatin1String("corpus"))
        dir = corpusStick();
    else
        dir = QDir(QString::fromLocal8Bit(qgetenv("USBI_SOURCE_DIR"))).filePath("sim/stick");
    QVERIFY(QFileInfo(dir).isDir());

    QProcess installer;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
    environment.insert(QStringLiteral("DISPLAY"), display);
    installer.setProcessEnvironment(environment);
    installer.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    installer.start(program, {dir});
    QVERIFY(installer.waitForStarted());
    auto mapped = [this] {
        QProcess info;
        info.start(QStringLiteral("xwininfo"),
                   {QStringLiteral("-display"), display, QStringLiteral("-name"),
                    QStringLiteral("USB Installer")});
        info.waitForFinished(-1);
        return info.readAllStandardOutput().contains("Map State: IsViewable");
    };
    QTRY_VERIFY_WITH_TIMEOUT(mapped() || installer.state() == QProcess::NotRunning, 120000);
    const bool running = installer.state() == QProcess::Running;
    installer.terminate();
    if (!installer.waitForFinished(30000)) {
        installer.kill();
        installer.waitForFinished(-1);
    }
    QVERIFY2(running, qPrintable(QStringLiteral("the program ended (status %1) before its window "
                                                "was mapped")
                                     .arg(installer.exitCode())));
}

QTEST_MAIN(TestFaults)
#include "test_faults.moc"

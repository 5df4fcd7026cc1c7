// The rule that decides which names and links from a stick reach a root shell, checked without
// root or the simulated client on a stick made in a temporary folder. Run it first after
// touching discovery: it takes milliseconds. A new class of name or link is a new row.
#include "InstallJob.h"
#include "InstallerSupport.h"
#include "PackageTypes.h"
#include "StickEntry.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

using V = StickEntry::Verdict;
Q_DECLARE_METATYPE(StickEntry::Verdict)

namespace {

// In a row's link target and expected text, {stick}, {outside} and {root} stand for the resolved
// mount directory, a folder beside it (off the stick) and the folder holding both; {mount} for
// the mount directory as the program was given it, made absolute.
const QString stickName = QStringLiteral("stick");
const QString outsideName = QStringLiteral("outside");

// What every row may point at: a file and a folder off the stick, and on it a file, a file in
// a subfolder, a FIFO, a folder and a link that leads off the stick.
const QStringList fixtureFiles{"outside/secret",     "stick-2/secret", "stick/real.bin",
                               "stick/sub/deep.bin", "stick/x y.crt",  "stick/XY.crt"};
const QList<QPair<QString, QString>> fixtureLinks{{"stick/hop", "{outside}/secret"},
                                                  {"stick/out.crt", "../outside/secret"},
                                                  {"stick/dangling.jpg", "nowhere"},
                                                  {"stick/linked-real.bin", "real.bin"},
                                                  {"usb0", "stick"}};

} // namespace

class TestNameRule : public QObject
{
    Q_OBJECT
    QTemporaryDir m_root;
    QString m_stick;
    QString m_outside;
    QString m_rootPath;

    QString expand(QString text, const QString &mount = QString()) const
    {
        return text.replace(QLatin1String("{mount}"), QDir(mount).absolutePath())
            .replace(QLatin1String("{stick}"), m_stick)
            .replace(QLatin1String("{outside}"), m_outside)
            .replace(QLatin1String("{root}"), m_rootPath);
    }

    bool makeLink(const QString &link, const QString &target) const
    {
        return ::symlink(QFile::encodeName(expand(target)).constData(),
                         QFile::encodeName(m_root.filePath(link)).constData()) == 0;
    }

private slots:
    void initTestCase()
    {
        // The scan's reasons are debug lines; a host's logging configuration may turn them off.
        QLoggingCategory::setFilterRules(QStringLiteral("usbi.stick.debug=true"));
        QVERIFY(m_root.isValid());
        for (const char *folder : {"stick/sub", "outside/dir", "stick-2"})
            QVERIFY(QDir(m_root.path()).mkpath(folder));
        m_stick = QDir(m_root.filePath(stickName)).canonicalPath();
        m_outside = QDir(m_root.filePath(outsideName)).canonicalPath();
        m_rootPath = QDir(m_root.path()).canonicalPath();
        for (const QString &file : fixtureFiles) {
            QFile f(m_root.filePath(file));
            QVERIFY(f.open(QIODevice::WriteOnly) && f.write("x") == 1);
        }
        QVERIFY(::mkfifo(QFile::encodeName(m_root.filePath("stick/pipe")).constData(), 0600) == 0);
        for (const auto &link : fixtureLinks)
            QVERIFY(makeLink(link.first, link.second));
    }

    // One entry of the stick: how it is made ("file", "folder", "fifo" or "link" to target),
    // then what the scan decides and the reason it gives for leaving it out.
    void entries_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("make");
        QTest::addColumn<QString>("target");
        QTest::addColumn<StickEntry::Verdict>("verdict");
        QTest::addColumn<QString>("reason");
        const auto row = [](const char *tag, const QString &name, const char *make,
                            const QString &target, V verdict, const QString &reason) {
            QTest::newRow(tag) << name << QString(make) << target << verdict << reason;
        };
        // Names a root shell reads as themselves inside double quotes.
        row("plain", "beach.jpg", "file", {}, V::Offered, {});
        row("blanks, parentheses, quotes, globs, #", "a b (1) 'q' [*?] #2.jpg", "file", {},
            V::Offered, {});
        row("apostrophe", "it's.ovpn", "file", {}, V::Offered, {});
        row("glob alone", "*.rdp", "file", {}, V::Offered, {});
        row("tilde and non-ASCII", "x-y ~root \u00e9.txt", "file", {}, V::Offered, {});
        row("'-' inside", "a-b.crt", "file", {}, V::Offered, {});
        row("leading ':' (a resource path to the toolkit)", ":logo.png", "file", {}, V::Offered,
            {});
        // Names that would end, chain or redirect a command, or break out of the quotes.
        row("command substitution", "$(touch pwned).jpg", "file", {}, V::RefusedName,
            "a name holding '$'");
        row("backquote", "a`freeze`b.png", "file", {}, V::RefusedName, "a name holding '`'");
        row("semicolon", "x;touch pwned;.jpg", "file", {}, V::RefusedName, "a name holding ';'");
        row("ampersand", "a&b.ppd", "file", {}, V::RefusedName, "a name holding '&'");
        row("pipe", "a|freeze.ovpn", "file", {}, V::RefusedName, "a name holding '|'");
        row("greater than", "a>b.txt", "file", {}, V::RefusedName, "a name holding '>'");
        row("less than", "a<b.jpg", "file", {}, V::RefusedName, "a name holding '<'");
        row("line break", "a\nb.jpg", "file", {}, V::RefusedName, "a name holding a line break");
        row("carriage return", "a\rb.png", "file", {}, V::RefusedName,
            "a name holding a carriage return");
        row("double quote", "say \"cheese\".jpg", "file", {}, V::RefusedName,
            "a name holding '\"'");
        row("backslash", "back\\slash.jpg", "file", {}, V::RefusedName, "a name holding '\\'");
        row("first of several", "a b;c$d.jpg", "file", {}, V::RefusedName, "a name holding ';'");
        row("leading '-' (an option to a tool)", "-rf.jpg", "file", {}, V::RefusedName,
            "a name beginning with '-'");
        row("leading '-' before another refused character", "-x;.crt", "file", {}, V::RefusedName,
            "a name beginning with '-'");
        // Names that show as another name: control and format characters.
        const auto shown = [&row](const char *tag, const QString &name, const char *code) {
            row(tag, name, "file", {}, V::MisleadingName,
                QStringLiteral("a name holding %1, which shows it as another name").arg(code));
        };
        shown("tab", "tab\there.crt", "U+0009");
        shown("escape sequence", "a\x1b[8mb.jpg", "U+001B");
        shown("delete", "a\x7f.png", "U+007F");
        shown("C1 control", "a\u0085b.txt", "U+0085");
        shown("right-to-left override", "root\u202etrc.pem", "U+202E");
        shown("left-to-right isolate", "a\u2066b.jpg", "U+2066");
        shown("zero-width space", "a\u200bb.crt", "U+200B");
        shown("zero-width joiner", "a\u200db.crt", "U+200D");
        // Built, not converted: a conversion from UTF-8 drops a leading byte order mark.
        shown("leading byte order mark", QChar(0xfeff) + QStringLiteral("a.crt"), "U+FEFF");
        shown("soft hyphen", "a\u00adb.crt", "U+00AD");
        shown("format character off the first plane", "a\U000e0041b.jpg", "U+E0041");
        row("shell character before a format character", "a;\u202eb.jpg", "file", {},
            V::RefusedName, "a name holding ';'");
        // What is not a file.
        row("hidden file", ".hidden.jpg", "file", {}, V::Hidden, "a hidden file");
        row("hidden file with a refused character", ".a;b.jpg", "file", {}, V::Hidden,
            "a hidden file");
        row("folder", "folder.jpg", "folder", {}, V::Folder, "a folder");
        row("FIFO", "fifo.rdp", "fifo", {}, V::NotAFile, "not a regular file");
        row("refused name on a folder", "a;b", "folder", {}, V::Folder, "a folder");
        // Links: as good as their final target, while that is a regular file on the stick.
        row("link to a file beside it", "linked.rdp", "link", "real.bin", V::Offered, {});
        row("link into a subfolder", "deep.jpg", "link", "sub/deep.bin", V::Offered, {});
        row("absolute link into the stick", "absolute-in.jpg", "link", "{stick}/real.bin",
            V::Offered, {});
        row("link through a link on the stick", "chain-in.jpg", "link", "linked-real.bin",
            V::Offered, {});
        row("absolute link off the stick", "absolute.crt", "link", "{outside}/secret",
            V::LeavesStick, "a link that leaves the stick, to {outside}/secret");
        row("relative link off the stick", "relative.crt", "link", "../outside/secret",
            V::LeavesStick, "a link that leaves the stick, to {outside}/secret");
        row("link out through a link", "chain.crt", "link", "hop", V::LeavesStick,
            "a link that leaves the stick, to {outside}/secret");
        row("link to a folder named like the stick", "sibling.crt", "link", "../stick-2/secret",
            V::LeavesStick, "a link that leaves the stick, to {root}/stick-2/secret");
        row("out and back in", "back-in.jpg", "link", "../stick/real.bin", V::Offered, {});
        row("link to a device", "update.tar", "link", "/dev/zero", V::LeavesStick,
            "a link that leaves the stick, to /dev/zero");
        row("link to a folder off the stick", "dir.jpg", "link", "{outside}/dir", V::LeavesStick,
            "a link that leaves the stick, to {outside}/dir");
        row("link to the mount directory", "self.jpg", "link", ".", V::LinkToNonFile,
            "a link to something that is not a regular file: {stick}");
        row("link to the stick's parent", "parent.jpg", "link", "..", V::LeavesStick,
            "a link that leaves the stick, to {root}");
        row("link to a folder on the stick", "sub.jpg", "link", "sub", V::LinkToNonFile,
            "a link to something that is not a regular file: {stick}/sub");
        row("link to a FIFO on the stick", "pipe.rdp", "link", "pipe", V::LinkToNonFile,
            "a link to something that is not a regular file: {stick}/pipe");
        row("link to itself", "loop.jpg", "link", "loop.jpg", V::LinkLoop,
            "a link loop, through {mount}/loop.jpg");
        row("dangling link", "gone.jpg", "link", "nowhere", V::DanglingLink,
            "a dangling link, to {mount}/nowhere");
        row("link through a dangling link", "via-dangling.jpg", "link", "dangling.jpg",
            V::DanglingLink, "a dangling link, to {mount}/dangling.jpg");
        row("refused name on a link to a file", "a$b.jpg", "link", "real.bin", V::RefusedName,
            "a name holding '$'");
        row("hidden link off the stick", ".out.crt", "link", "{outside}/secret", V::Hidden,
            "a hidden file");
    }

    void entries()
    {
        QFETCH(QString, name);
        QFETCH(QString, make);
        QFETCH(QString, target);
        QFETCH(StickEntry::Verdict, verdict);
        QFETCH(QString, reason);
        const QString path = m_stick + '/' + name;
        const QByteArray encoded = QFile::encodeName(path);
        if (make == QLatin1String("file"))
            QVERIFY(QFile(path).open(QIODevice::WriteOnly));
        else if (make == QLatin1String("folder"))
            QVERIFY(QDir().mkdir(path));
        else if (make == QLatin1String("fifo"))
            QVERIFY(::mkfifo(encoded.constData(), 0600) == 0);
        else
            QVERIFY(makeLink(stickName + '/' + name, target));

        // However the mount directory is named (resolved, relative to the current folder, through
        // a link), links are judged by where they end.
        QVERIFY(QDir::setCurrent(m_root.path()));
        for (const QString &mount : {m_stick, stickName, m_root.filePath("usb0")}) {
            const StickDirectory stick(mount);
            const StickEntry byName = stick.classify(name);
            QCOMPARE(byName.verdict, verdict);
            QCOMPARE(byName.reason(), expand(reason, mount));
            QCOMPARE(byName.link, make == QLatin1String("link"));
            // The scan's two other ways in: a listing's entry, and a kind read from readdir.
            const StickEntry byInfo = stick.classify(QFileInfo(mount + '/' + name));
            QCOMPARE(byInfo.verdict, verdict);
            QCOMPARE(byInfo.reason(), byName.reason());
            struct stat status;
            QVERIFY(::lstat(encoded.constData(), &status) == 0);
            const StickDirectory::Kind kind =
                S_ISREG(status.st_mode)   ? StickDirectory::Kind::File
                : S_ISDIR(status.st_mode) ? StickDirectory::Kind::Folder
                : S_ISLNK(status.st_mode) ? StickDirectory::Kind::Unknown
                                          : StickDirectory::Kind::Other;
            const StickEntry byKind = stick.classify(name, kind);
            QCOMPARE(byKind.verdict, verdict);
            QCOMPARE(byKind.reason(), byName.reason());
        }
    }

    // The text the mount directory and names are checked with: its first unsafe character.
    void unsafeCharacter_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("first");
        QTest::newRow("a mount directory") << "/media/usb0"
                                           << "";
        QTest::newRow("blanks, quotes, globs") << "/media/a b'*?[]#~(){}!"
                                               << "";
        QTest::newRow("a leading '-' is the name's matter") << "-x"
                                                            << "";
        QTest::newRow("non-ASCII") << "\u00e9\u4e2d"
                                   << "";
        QTest::newRow("empty") << ""
                               << "";
        const QString unsafe = QStringLiteral("$`\"\\;&|<>\r\n");
        for (const QChar c : unsafe)
            QTest::newRow(qPrintable("alone: U+" + QString::number(c.unicode(), 16)))
                << QString(c) << QString(c);
        QTest::newRow("the first of two") << "/media/a|b;c"
                                          << "|";
        QTest::newRow("at the end") << "/media/usb0\n"
                                    << "\n";
    }

    void unsafeCharacter()
    {
        QFETCH(QString, text);
        QFETCH(QString, first);
        const QChar found = shellUnsafeCharacter(text);
        QCOMPARE(found.isNull() ? QString() : QString(found), first);
    }

    // A word where a command leaves a path bare: ordinary paths stay byte for byte the client's,
    // anything else is quoted, and the shell reads every one back as exactly the word.
    void shellWord_data()
    {
        QTest::addColumn<QString>("word");
        QTest::addColumn<QString>("written");
        QTest::newRow("plain path") << "/tmp/config/files/default_wp"
                                    << "/tmp/config/files/default_wp";
        QTest::newRow("every plain character") << "aZ09_./+,:=@%-"
                                               << "aZ09_./+,:=@%-";
        QTest::newRow("blank") << "/media/usb0/a b.jpg"
                               << "'/media/usb0/a b.jpg'";
        QTest::newRow("apostrophe") << "it's.ovpn"
                                    << "'it'\\''s.ovpn'";
        QTest::newRow("apostrophes only") << "''"
                                          << "''\\'''\\'''";
        QTest::newRow("glob") << "*.rdp"
                              << "'*.rdp'";
        QTest::newRow("brackets and question mark") << "[a]?.jpg"
                                                    << "'[a]?.jpg'";
        QTest::newRow("comment") << "#2.txt"
                                 << "'#2.txt'";
        QTest::newRow("tilde") << "~root"
                               << "'~root'";
        QTest::newRow("tab") << "tab\there"
                             << "'tab\there'";
        QTest::newRow("non-ASCII") << "\u00e9.txt"
                                   << "'\u00e9.txt'";
        QTest::newRow("braces and parentheses") << "a{b,c}(d).png"
                                                << "'a{b,c}(d).png'";
        QTest::newRow("exclamation mark") << "!x"
                                          << "'!x'";
        QTest::newRow("empty") << ""
                               << "''";
    }

    void shellWord()
    {
        QFETCH(QString, word);
        QFETCH(QString, written);
        const QString shellWord = installers::shellWord(word);
        QCOMPARE(shellWord, written);
        // printf only, in a folder of our own: a quoting fault cannot reach anything.
        QProcess shell;
        shell.setWorkingDirectory(m_root.path());
        shell.start("/bin/sh", {"-c", "printf '%s' " + shellWord});
        QVERIFY(shell.waitForFinished());
        QCOMPARE(QString::fromUtf8(shell.readAllStandardOutput()), word);
    }

    // What the rule adds for one type: a certificate's blank-free copy is made on the stick,
    // an Imprivata picture is copied to the top of the client's tree. Each row on a stick of
    // its own, holding the name and, when given, another entry (a file, or a dangling link).
    void asType_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("standing");
        QTest::addColumn<StickEntry::Verdict>("verdict");
        QTest::addColumn<QString>("reason");
        const QString taken =
            QStringLiteral("a certificate whose name without blanks is taken on the stick, by ");
        const QString tree = QStringLiteral("named like one of the client's own files, ");
        QTest::newRow("blank-free name free") << "a b.crt"
                                              << "cert"
                                              << "" << V::Offered << "";
        QTest::newRow("blank-free name taken by the administrator's file")
            << "a b.crt"
            << "cert"
            << "file:ab.crt" << V::BlankFreeName << taken + "ab.crt";
        QTest::newRow("taken by a link, even a dangling one")
            << "a b.pem"
            << "cert"
            << "link:ab.pem" << V::BlankFreeName << taken + "ab.pem";
        QTest::newRow("taken in another letter case")
            << "root ca.crt"
            << "cert"
            << "file:ROOTCA.Crt" << V::BlankFreeName << taken + "ROOTCA.Crt";
        QTest::newRow("a leading blank hides a '-'")
            << " --help.crt"
            << "cert"
            << "" << V::BlankFreeName << "a certificate whose name without blanks begins with '-'";
        QTest::newRow("no blank, no copy") << "ab.crt"
                                           << "cert"
                                           << "file:AB.CRT" << V::Offered << "";
        QTest::newRow("other types make no copy") << "a b.jpg"
                                                  << "wallpaper"
                                                  << "file:ab.jpg" << V::Offered << "";
        QTest::newRow("the desktop link as an Imprivata picture")
            << "desktop_img.jpg"
            << "iwallpaper"
            << "" << V::ClientTreeName << tree + "/tmp/config/files/desktop_img.jpg";
        QTest::newRow("the Citrix picture as an Imprivata picture")
            << "citrix-desktop.jpg"
            << "iwallpaper"
            << "" << V::ClientTreeName << tree + "/tmp/config/files/citrix-desktop.jpg";
        QTest::newRow("the tree's names are case-sensitive") << "Desktop_img.jpg"
                                                             << "iwallpaper"
                                                             << "" << V::Offered << "";
        QTest::newRow("a tree name as another type") << "desktop_img.jpg"
                                                     << "wallpaper"
                                                     << "" << V::Offered << "";
    }

    void asType()
    {
        QFETCH(QString, name);
        QFETCH(QString, type);
        QFETCH(QString, standing);
        QFETCH(StickEntry::Verdict, verdict);
        QFETCH(QString, reason);
        QTemporaryDir dir;
        QVERIFY(QFile(dir.filePath(name)).open(QIODevice::WriteOnly));
        const QString other = standing.section(QLatin1Char(':'), 1);
        if (standing.startsWith(QLatin1String("file:")))
            QVERIFY(QFile(dir.filePath(other)).open(QIODevice::WriteOnly));
        else if (!other.isEmpty())
            QVERIFY(QFile::link(QStringLiteral("nowhere"), dir.filePath(other)));
        const StickDirectory stick(dir.path());
        const StickEntry entry =
            stick.classifyAs(*PackageTypes::find(type), name, stick.classify(name));
        QCOMPARE(entry.verdict, verdict);
        QCOMPARE(entry.reason(), reason);
        // The same just before installing.
        QCOMPARE(stick.judgeAgain(*PackageTypes::find(type), name).reason(), reason);
    }

    // Just before its commands, a chosen file is judged again as it stands now.
    void judgeAgain_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("reason");
        QTest::newRow("a file on the stick") << "real.bin"
                                             << "ppd"
                                             << "";
        QTest::newRow("a link to a file on the stick") << "linked-real.bin"
                                                       << "ppd"
                                                       << "";
        QTest::newRow("now a FIFO") << "pipe"
                                    << "ppd"
                                    << "not a regular file";
        QTest::newRow("now a folder") << "sub"
                                      << "ppd"
                                      << "a folder";
        QTest::newRow("now a link off the stick")
            << "out.crt"
            << "cert"
            << "a link that leaves the stick, to {outside}/secret";
        QTest::newRow("now a dangling link") << "dangling.jpg"
                                             << "screensaver"
                                             << "a dangling link, to {stick}/nowhere";
        QTest::newRow("its blank-free name now taken")
            << "x y.crt"
            << "cert"
            << "a certificate whose name without blanks is taken on the stick, by XY.crt";
        QTest::newRow("gone since the scan: its commands fail as they always did") << "vanished.crt"
                                                                                   << "cert"
                                                                                   << "";
    }

    void judgeAgain()
    {
        QFETCH(QString, file);
        QFETCH(QString, type);
        QFETCH(QString, reason);
        const StickEntry entry =
            StickDirectory(m_stick).judgeAgain(*PackageTypes::find(type), file);
        QCOMPARE(entry.reason(), expand(reason));
    }

    // The mount directories the program refuses outright, and why.
    void mountDirectory_data()
    {
        QTest::addColumn<QString>("dir");
        QTest::addColumn<QString>("code");
        QTest::newRow("the stick") << "{stick}"
                                   << "";
        QTest::newRow("a link to the stick") << "{root}/usb0"
                                             << "";
        QTest::newRow("missing: nothing found, as before") << "{root}/missing"
                                                           << "";
        QTest::newRow("empty: the working folder") << ""
                                                   << "empty";
        QTest::newRow("root") << "/"
                              << "root";
        QTest::newRow("root, spelt otherwise") << "//./"
                                               << "root";
        QTest::newRow("root through the stick's parents") << "{stick}/../../../../../../../.."
                                                          << "root";
        QTest::newRow("a link to root") << "{root}/to-root"
                                        << "root";
        QTest::newRow("an unsafe character") << "/media/a;b"
                                             << "unsafe-character";
    }

    void mountDirectory()
    {
        QFETCH(QString, dir);
        QFETCH(QString, code);
        QFile::link(QStringLiteral("/"), m_root.filePath("to-root"));
        const std::optional<RefusedDirectory> refused = refusedMountDirectory(expand(dir));
        QCOMPARE(refused ? refused->code : QString(), code);
        QVERIFY(!refused || !refused->why.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestNameRule)
#include "test_name_rule.moc"

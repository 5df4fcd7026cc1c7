// The rule that decides which names and links from a stick reach a root shell, checked without
// root or the simulated client on a stick made in a temporary folder. Run it first after
// touching discovery: it takes milliseconds. A new class of name or link is a new row.
#include "InstallJob.h"
#include "InstallerSupport.h"
#include "LinkRecheck.h"
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
const QStringList fixtureFiles{"outside/secret", "stick-2/secret", "stick/real.bin",
                               "stick/sub/deep.bin"};
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
        row("tab", "tab\there.crt", "file", {}, V::Offered, {});
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

    // Just before installing, the chosen files are judged again: a link that does not end at a
    // file on the stick is left out, with one debug line; the rest install.
    void linkRecheck_data()
    {
        QTest::addColumn<QStringList>("chosen");
        QTest::addColumn<QStringList>("kept");
        QTest::addColumn<bool>("runs");
        QTest::newRow("files on the stick") << QStringList{"real.bin", "linked-real.bin"}
                                            << QStringList{"real.bin", "linked-real.bin"} << true;
        QTest::newRow("a link off the stick among them")
            << QStringList{"out.crt", "real.bin", "hop"} << QStringList{"real.bin"} << true;
        QTest::newRow("only links off the stick")
            << QStringList{"out.crt", "hop"} << QStringList{} << false;
        QTest::newRow("a dangling link") << QStringList{"dangling.jpg"} << QStringList{} << false;
        QTest::newRow("a file gone since the scan: its installer reports it")
            << QStringList{"vanished.crt"} << QStringList{"vanished.crt"} << true;
        QTest::newRow("nothing chosen") << QStringList{} << QStringList{} << true;
    }

    void linkRecheck()
    {
        QFETCH(QStringList, chosen);
        QFETCH(QStringList, kept);
        QFETCH(bool, runs);
        InstallJob job(PackageTypes::all().front(), m_stick, chosen);
        for (const QString &file : chosen) {
            if (!kept.contains(file))
                QTest::ignoreMessage(
                    QtDebugMsg,
                    QRegularExpression('^' + QRegularExpression::escape('"' + file + '"') +
                                       " is left out of the installation: a "));
        }
        QCOMPARE(installers::keepOnlyFilesOnTheStick(job), runs);
        QCOMPARE(job.files, kept);
    }
};

QTEST_GUILESS_MAIN(TestNameRule)
#include "test_name_rule.moc"

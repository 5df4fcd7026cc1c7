#include "DaxProperties.h"
#include "MgrDlg.h"
#include "RcList.h"
#include "StickEntry.h"
#include "StrayPromptCleanup.h"
#include "WindowSetup.h"

#include <QApplication>
#include <QDebug>
#include <QOpenGLContext>
#include <QProcess>
#include <QStringList>

#include <cstdio>

namespace {

const int waitMs = 30000;

// The terminal-password prompt. Exit code 1 means the user passed it (the prompt's own,
// inverted convention), and only when the prompt ended by itself: one killed by a signal (a lost
// X connection, a hang-up) or still running did not pass. On refusal every prompt is stopped.
bool passesTerminalPassword()
{
    QProcess prompt;
    prompt.start(QStringLiteral("wpasswd"), QStringList(), QIODevice::ReadWrite);
    const bool ended = prompt.waitForFinished(waitMs);
    qDebug() << "Exit codee " << prompt.exitCode();
    if (ended && prompt.exitStatus() == QProcess::NormalExit && prompt.exitCode() == 1)
        return true;
    prompt.terminate();
    // Same process object: killall only starts once wpasswd has ended.
    prompt.start(QStringLiteral("killall"), {QStringLiteral("wpasswd")}, QIODevice::ReadWrite);
    prompt.waitForFinished(waitMs);
    return false;
}

// The windows are plain widgets: without this the X11 platform plugin loads the OpenGL stack (on
// a client without a GPU, a software renderer of some 50 MiB) that nothing here uses. An
// administrator's own setting is kept. True when the setting is the program's own.
bool turnOffGlIntegration()
{
    if (qEnvironmentVariableIsSet("QT_XCB_GL_INTEGRATION"))
        return false;
    qputenv("QT_XCB_GL_INTEGRATION", "none");
    return true;
}

// Every program started from here on (the password prompt, killall, the desktop programs the
// installers restart) gets the environment the program was started with, not the toolkit's
// settings for this process. The X11 plugin reads its setting only when first asked about
// OpenGL, so it is asked now, before the setting goes.
void restoreStartEnvironment(bool glTurnedOff)
{
    if (!glTurnedOff)
        return;
    QOpenGLContext::supportsThreadedOpenGL();
    qunsetenv("QT_XCB_GL_INTEGRATION");
}

// The installers put the mount directory into root shell commands and judge links by it: one
// holding a character that would end, chain, redirect or unquote such a command, an empty one
// and the root folder are refused before anything is done.
bool refusesMountDirectory(const QString &dir)
{
    const std::optional<RefusedDirectory> refused = refusedMountDirectory(dir);
    if (!refused)
        return false;
    // One line, whatever the path holds.
    const auto visible = [](QString text) {
        return text.replace(QLatin1Char('\n'), QLatin1String("\\n"))
            .replace(QLatin1Char('\r'), QLatin1String("\\r"));
    };
    std::fprintf(stderr, "Refusing the mount directory \"%s\": %s\n", qUtf8Printable(visible(dir)),
                 qUtf8Printable(refused->why));
    return true;
}

} // namespace

// The whole start-up: configuration, the terminal-password gate, the command line, the
// clean-up of stray password prompts, the scan of the stick, then the main window and its
// event loop. The toolkit removes its own options from argc and argv.
int main(int argc, char *argv[])
{
    DaxProperties security(QStringLiteral("user/system/security"), QString(), true);
    const bool glTurnedOff = turnOffGlIntegration();
    windowsetup::enableHighDpi();
    QApplication app(argc, argv);
    restoreStartEnvironment(glTurnedOff);

    security.Load();
    if (security.GetBoolean(QStringLiteral("enableterminalpass"), false) &&
        !passesTerminalPassword())
        return 1;

    // Checked after the gate, on what QApplication left of the command line.
    if (argc != 2) {
        std::printf("usage : %s mount_dir\n", argv[0]);
        return 1;
    }
    const QString mountDir = QString::fromUtf8(argv[1]);
    if (refusesMountDirectory(mountDir))
        return 1;

    // killall "wpassword", not the gate's "wpasswd": the two names differ on purpose. It runs
    // while the stick is scanned and the window is built, which the client does not see, and
    // has ended before the client sees anything else.
    StrayPromptCleanup cleanup;

    // Read by the main window for the whole run and never deleted; held in a static so that it
    // stays reachable until the process ends.
    static RcList *found = nullptr;
    found = new RcList(mountDir);
    scanEveryType(*found);

    if (found->entries.isEmpty()) {
        cleanup.wait();
        qDebug() << "no resources found in " << found->dir;
        return 0;
    }

    // Lives until the process ends; never deleted.
    static MgrDlg *window = nullptr;
    window = new MgrDlg(found);
    cleanup.wait();
    window->show();
    return app.exec();
}

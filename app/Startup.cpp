#include "Startup.h"

#include "DaxProperties.h"
#include "MgrDlg.h"
#include "RcList.h"

#include <QApplication>
#include <QDebug>
#include <QProcess>
#include <QStringList>

#include <cstdio>

namespace {

const int waitMs = 30000;

// The terminal-password prompt. Exit code 1 means the user passed it: this inverted convention
// is intended. On refusal every prompt is stopped.
bool passesTerminalPassword()
{
    QProcess prompt;
    prompt.start(QStringLiteral("wpasswd"), QStringList(), QIODevice::ReadWrite);
    prompt.waitForFinished(waitMs);
    qDebug() << "Exit codee " << prompt.exitCode();
    if (prompt.exitCode() == 1)
        return true;
    prompt.terminate();
    // Same process object: killall only starts once wpasswd has ended.
    prompt.start(QStringLiteral("killall"), {QStringLiteral("wpasswd")}, QIODevice::ReadWrite);
    prompt.waitForFinished(waitMs);
    return false;
}

} // namespace

int runUsbInstaller(int &argc, char **argv)
{
    DaxProperties security(QStringLiteral("user/system/security"), QString(), true);
    // The windows are plain widgets: without this the X11 platform plugin loads the OpenGL
    // stack (on a client without a GPU, a software renderer of some 50 MiB) that nothing here
    // uses. An administrator's own setting is kept.
    if (!qEnvironmentVariableIsSet("QT_XCB_GL_INTEGRATION"))
        qputenv("QT_XCB_GL_INTEGRATION", "none");
    QApplication app(argc, argv);

    security.Load();
    if (security.GetBoolean(QStringLiteral("enableterminalpass"), false) &&
        !passesTerminalPassword())
        return 1;

    // Checked after the gate, on what QApplication left of the command line.
    if (argc != 2) {
        std::printf("usage : %s mount_dir\n", argv[0]);
        return 1;
    }

    // "wpassword", not the gate's "wpasswd": the two names differ on purpose.
    QProcess cleanup;
    const QStringList cleanupArgs{QStringLiteral("wpassword")};
    cleanup.start(QStringLiteral("killall"), cleanupArgs, QIODevice::ReadWrite);
    cleanup.waitForFinished(waitMs);

    // Read by the main window for the whole run and never deleted; held in a static so that it
    // stays reachable until the process ends.
    static RcList *found = nullptr;
    found = new RcList(QString::fromUtf8(argv[1]));
    scanEveryType(*found);

    if (found->entries.isEmpty()) {
        qDebug() << "no resources found in " << found->dir;
        return 0;
    }

    // Lives until the process ends; never deleted.
    static MgrDlg *window = nullptr;
    window = new MgrDlg(found);
    window->show();
    return app.exec();
}

#ifndef RCINSTALLER_H
#define RCINSTALLER_H

#include <QThread>

struct InstallJob;

// The worker thread of one installation: runs the installer routine of the job's type and then
// signals completion.
class RcInstaller : public QThread
{
    Q_OBJECT

public:
    explicit RcInstaller(QObject *parent = nullptr);

    InstallJob *job = nullptr; // not owned; set before the thread starts

signals:
    // Emitted on the worker thread as its last act.
    void completed();

protected:
    void run() override;
};

#endif

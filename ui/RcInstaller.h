#ifndef RCINSTALLER_H
#define RCINSTALLER_H

#include "Dispatch.h"
#include "InstallOutcome.h"

#include <QThread>

struct InstallJob;

// The worker thread of one installation: installs its job with the routine against the client
// itself and verifies it (installers::install), then signals completion.
// It waits for itself when it is destroyed, so that it never goes while still running.
class RcInstaller : public QThread
{
    Q_OBJECT

public:
    // job is not owned and must outlive the thread object.
    explicit RcInstaller(InstallJob *job, installers::Routine routine = installers::dispatch,
                         QObject *parent = nullptr);
    ~RcInstaller() override;

    // What the installation did and found; complete once completed() was emitted.
    const InstallOutcome &outcome() const { return m_outcome; }

signals:
    // Emitted on the worker thread as its last act.
    void completed();

protected:
    void run() override;

private:
    InstallJob *const job;
    const installers::Routine routine;
    InstallOutcome m_outcome;
};

#endif

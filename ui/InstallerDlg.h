#ifndef INSTALLERDLG_H
#define INSTALLERDLG_H

#include "RcInstaller.h"

#include <QDialog>

#include <memory>

struct InstallJob;
namespace Ui {
class InstallerDialog;
}

// The progress dialog of one installation. It starts the worker at once and refuses to close
// until the worker has completed. When everything verified it says so and closes at once;
// when anything failed it stays, says what failed first, and closes on Return, Escape or its
// Close button.
class InstallerDlg : public QDialog
{
    Q_OBJECT

public:
    // job is not owned and must outlive the dialog; routine is what the worker runs on it.
    explicit InstallerDlg(InstallJob *job, installers::Routine routine = installers::dispatch);
    ~InstallerDlg() override;

public slots:
    void installed();
    // Escape ends up here rather than in closeEvent(); refused the same way.
    void reject() override;

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    // Grows the dialog to say what failed, and waits for the administrator.
    void showFailure(const InstallOutcome &outcome);

    const std::unique_ptr<Ui::InstallerDialog> ui;
    bool finished = false;
    RcInstaller installer;
};

#endif

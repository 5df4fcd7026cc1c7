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
// until the worker has completed.
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
    const std::unique_ptr<Ui::InstallerDialog> ui;
    bool finished = false;
    RcInstaller installer;
};

#endif

#include "InstallerDlg.h"

#include "InstallJob.h"
#include "PackageTypes.h"
#include "WindowKeys.h"
#include "WindowSetup.h"
#include "ui_InstallerDialog.h"

#include <QCloseEvent>
#include <QPushButton>

#include <utility>

InstallerDlg::InstallerDlg(InstallJob *job, installers::Routine routine)
    : QDialog(nullptr), ui(std::make_unique<Ui::InstallerDialog>()),
      installer(job, std::move(routine))
{
    windowsetup::loadIcons();
    ui->setupUi(this);
    ui->lIInstaller->setPixmap(windowsetup::titleImage());
    setWindowFlags(Qt::Dialog);
    setFixedSize(width(), height());
    setStyleSheet(windowsetup::styleSheet());
    windowsetup::centre(this);
    windowsetup::setIconAndTitle(this);
    new WindowKeys(this);

    // No text of its own (the firmware update, bound to "firmware"): "Installing..." stays.
    const QString text = job->type->progressLabel();
    if (!text.isEmpty())
        ui->lInstall->setText(text);

    // Shown only when the installation fails.
    ui->lFailure->hide();
    ui->pbClose->hide();
    connect(ui->pbClose, &QPushButton::clicked, this, &QDialog::accept);

    connect(&installer, &RcInstaller::completed, this, &InstallerDlg::installed);
    installer.start(QThread::InheritPriority);
}

InstallerDlg::~InstallerDlg() = default;

void InstallerDlg::installed()
{
    finished = true;
    const InstallOutcome &outcome = installer.outcome();
    if (!outcome.succeeded()) {
        showFailure(outcome);
        return;
    }
    ui->lInstall->setText(QStringLiteral("Package(s) Installed"));
    close();
}

void InstallerDlg::showFailure(const InstallOutcome &outcome)
{
    const int steps = outcome.failureCount() - static_cast<int>(outcome.skipped.size());
    QStringList counts;
    if (steps > 0)
        counts.append(steps == 1 ? QStringLiteral("1 step failed")
                                 : QStringLiteral("%1 steps failed").arg(steps));
    if (!outcome.skipped.isEmpty())
        counts.append(outcome.skipped.size() == 1
                          ? QStringLiteral("1 file was left out")
                          : QStringLiteral("%1 files were left out").arg(outcome.skipped.size()));
    ui->lInstall->setText(QStringLiteral("The installation failed."));
    ui->lFailure->setText(QStringLiteral("%1.\n\n%2. The system log holds the details.")
                              .arg(outcome.firstFailure(), counts.join(QStringLiteral(" and "))));
    ui->pbInstall->hide();
    ui->lFailure->show();
    ui->pbClose->show();
    ui->pbClose->setDefault(true);
    ui->pbClose->setFocus();
    setFixedSize(ui->pbClose->geometry().right() + 11, ui->pbClose->geometry().bottom() + 11);
    windowsetup::centre(this);
}

void InstallerDlg::reject()
{
    if (finished)
        QDialog::reject();
}

void InstallerDlg::closeEvent(QCloseEvent *event)
{
    event->setAccepted(finished);
}

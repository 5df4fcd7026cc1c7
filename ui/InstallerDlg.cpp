#include "InstallerDlg.h"

#include "InstallJob.h"
#include "PackageTypes.h"
#include "WindowKeys.h"
#include "WindowSetup.h"
#include "ui_InstallerDialog.h"

#include <QCloseEvent>

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

    connect(&installer, &RcInstaller::completed, this, &InstallerDlg::installed);
    installer.start(QThread::InheritPriority);
}

InstallerDlg::~InstallerDlg() = default;

void InstallerDlg::installed()
{
    finished = true;
    ui->lInstall->setText(QStringLiteral("Package(s) Installed"));
    close();
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

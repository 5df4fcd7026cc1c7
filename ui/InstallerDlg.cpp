#include "InstallerDlg.h"

#include "InstallJob.h"
#include "PackageTypes.h"
#include "WindowSetup.h"

#include <QCloseEvent>

InstallerDlg::InstallerDlg(InstallJob *job) : QDialog(nullptr), installer(nullptr)
{
    windowsetup::loadIcons();
    setupUi(this);
    lIInstaller->setPixmap(windowsetup::titleImage());
    setWindowFlags(Qt::Dialog);
    setFixedSize(width(), height());
    setStyleSheet(windowsetup::styleSheet());
    windowsetup::centre(this);
    windowsetup::setIconAndTitle(this);

    this->job = job;
    finished = false;
    // No text of its own (the firmware update, bound to "firmware"): "Installing..." stays.
    const QString text = job->type->progressLabel();
    if (!text.isEmpty())
        lInstall->setText(text);

    connect(&installer, &RcInstaller::completed, this, &InstallerDlg::installed);
    installer.job = job;
    installer.start(QThread::InheritPriority);
}

InstallerDlg::~InstallerDlg()
{
    // The thread object must not go while run() is still returning.
    installer.wait();
}

void InstallerDlg::installed()
{
    finished = true;
    lInstall->setText(QStringLiteral("Package(s) Installed"));
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

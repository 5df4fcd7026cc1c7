#include "MgrDlg.h"

#include "InstallJob.h"
#include "InstallerDlg.h"
#include "PackageTypes.h"
#include "PngIconEngine.h"
#include "RcList.h"
#include "WindowSetup.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QIcon>
#include <QListWidgetItem>
#include <QTableWidgetItem>

MgrDlg::MgrDlg(RcList *list) : QMainWindow(nullptr)
{
    windowsetup::loadIcons();
    setupUi(this);
    lIcon->setPixmap(windowsetup::titleImage());
    setWindowFlags(Qt::Dialog);
    setFixedSize(width(), height());
    rcList = list;
    setStyleSheet(windowsetup::styleSheet());
    placeWindow();
    fillTypeList();
}

MgrDlg::~MgrDlg() = default;

void MgrDlg::placeWindow()
{
    windowsetup::centre(this);
    windowsetup::setIconAndTitle(this);
}

void MgrDlg::fillTypeList()
{
    lwType->clear();
    for (const PackageType *type : PackageTypes::inListOrder())
        addType(type->typeKey(), type->name());
    // Emits the current-item change: the window opens with a page already filled.
    lwType->setCurrentRow(0);
}

void MgrDlg::addType(const QString &key, const QString &name)
{
    if (!rcList->hasType(key))
        return;
    const QIcon icon(new PngIconEngine(PackageTypes::find(key)->iconPath()));
    auto *item = new QListWidgetItem(icon, name);
    item->setData(Qt::UserRole, key);
    // The list sorts itself by display name.
    lwType->insertItem(lwType->count(), item);
}

void MgrDlg::changeType(QListWidgetItem *current, QListWidgetItem * /*previous*/)
{
    if (!current)
        return;
    currentType = current->data(Qt::UserRole).toString();
    currentFiles = rcList->filesOfType(currentType);
    const PackageType *type = PackageTypes::find(currentType);
    if (!type)
        return;
    if (type->page == SelectionPage::Multi) {
        sw->setCurrentWidget(pMulti);
        fillMulti();
    } else {
        sw->setCurrentWidget(pSingle);
        fillSingle();
    }
}

void MgrDlg::fillMulti()
{
    // Rows stay: a type with fewer files leaves the surplus rows empty, and installing skips
    // them.
    twMulti->clearContents();
    twMulti->setColumnWidth(0, 400);
    twMulti->setColumnWidth(1, 30);
    for (int i = 0; i < currentFiles.size(); ++i) {
        if (twMulti->rowCount() <= i)
            twMulti->insertRow(i);
        twMulti->setItem(i, 0, new QTableWidgetItem(currentFiles.at(i)));
        // Placed by index right after the item, although the sorting table may have moved the
        // item already: intended.
        auto *box = new QCheckBox;
        box->setChecked(true);
        twMulti->setCellWidget(i, 1, box);
    }
}

void MgrDlg::fillSingle()
{
    lwSingle->clear();
    for (const QString &file : qAsConst(currentFiles))
        lwSingle->addItem(file);
    lwSingle->setCurrentRow(0);
}

void MgrDlg::installSingle()
{
    const QListWidgetItem *item = lwSingle->currentItem();
    if (!item)
        return;
    selectedFiles.clear();
    selectedFiles.append(item->text());
    startInstall();
}

void MgrDlg::installMulti()
{
    selectedFiles.clear();
    for (int row = 0; row < twMulti->rowCount(); ++row) {
        const auto *box = static_cast<QAbstractButton *>(twMulti->cellWidget(row, 1));
        if (box && box->isChecked())
            selectedFiles.append(twMulti->item(row, 0)->text());
    }
    startInstall();
}

void MgrDlg::startInstall()
{
    if (selectedFiles.isEmpty())
        return;
    InstallJob job(currentType, rcList->dir, selectedFiles);
    InstallerDlg dialog(&job);
    hide();
    dialog.exec();
    show();
}

void MgrDlg::quit()
{
    close();
}

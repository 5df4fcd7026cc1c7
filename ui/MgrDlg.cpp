#include "MgrDlg.h"

#include "InstallJob.h"
#include "InstallerDlg.h"
#include "PackageTypes.h"
#include "PngIconEngine.h"
#include "RcList.h"
#include "WindowKeys.h"
#include "WindowSetup.h"
#include "ui_MainWindow.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QIcon>
#include <QKeyEvent>
#include <QListWidgetItem>
#include <QTableWidgetItem>

#include <utility>

namespace {

// A file's row: shows the scan's name and carries it, for installing, as data that nothing in
// the window can edit. The row's text is never read back: it could be edited into a command.
template <typename Item> Item *fileItem(const QString &name)
{
    auto *item = new Item(name);
    item->setData(Qt::UserRole, name);
    item->setFlags(item->flags() & ~Qt::ItemIsEditable);
    return item;
}

QString fileOf(const QTableWidgetItem *item)
{
    return item->data(Qt::UserRole).toString();
}

QString fileOf(const QListWidgetItem *item)
{
    return item->data(Qt::UserRole).toString();
}

} // namespace

MgrDlg::MgrDlg(RcList *list, installers::Routine routine)
    : QMainWindow(nullptr), ui(std::make_unique<Ui::MainWindow>()), rcList(list),
      routine(std::move(routine))
{
    windowsetup::loadIcons();
    ui->setupUi(this);
    ui->lIcon->setPixmap(windowsetup::titleImage());
    setWindowFlags(Qt::Dialog);
    setFixedSize(width(), height());
    setStyleSheet(windowsetup::styleSheet());
    placeWindow();
    new WindowKeys(this);
    ui->twMulti->installEventFilter(this);
    ui->lwSingle->installEventFilter(this);
    fillTypeList();
    ui->lwType->setFocus();
}

MgrDlg::~MgrDlg() = default;

void MgrDlg::placeWindow()
{
    windowsetup::centre(this);
    windowsetup::setIconAndTitle(this);
}

void MgrDlg::fillTypeList()
{
    ui->lwType->clear();
    for (const PackageType *type : PackageTypes::inWindowOrder())
        addType(*type);
    // Emits the current-item change: the window opens with a page already filled.
    ui->lwType->setCurrentRow(0);
}

void MgrDlg::addType(const PackageType &type)
{
    if (!rcList->hasType(type.typeKey()))
        return;
    const QIcon icon(new PngIconEngine(type.iconPath()));
    auto *item = new QListWidgetItem(icon, type.name());
    // The row's position in the table, so that the type is never looked up by its key again.
    item->setData(Qt::UserRole, static_cast<int>(&type - PackageTypes::all().data()));
    ui->lwType->insertItem(ui->lwType->count(), item);
}

void MgrDlg::changeType(QListWidgetItem *current, QListWidgetItem * /*previous*/)
{
    if (!current)
        return;
    currentType = &PackageTypes::all().at(current->data(Qt::UserRole).toUInt());
    currentFiles = rcList->filesOfType(currentType->typeKey());
    // Screen readers say which type's files the focus is in.
    const QString files = currentType->name() + QLatin1String(" files");
    ui->twMulti->setAccessibleName(files);
    ui->lwSingle->setAccessibleName(files);
    if (currentType->page == SelectionPage::Multi) {
        ui->sw->setCurrentWidget(ui->pMulti);
        fillMulti();
    } else {
        ui->sw->setCurrentWidget(ui->pSingle);
        fillSingle();
    }
}

void MgrDlg::fillMulti()
{
    // Rows stay: a type with fewer files leaves the surplus rows empty, and installing skips
    // them.
    ui->twMulti->clearContents();
    ui->twMulti->setColumnWidth(0, 400);
    ui->twMulti->setColumnWidth(1, 30);
    for (int i = 0; i < currentFiles.size(); ++i) {
        if (ui->twMulti->rowCount() <= i)
            ui->twMulti->insertRow(i);
        ui->twMulti->setItem(i, 0, fileItem<QTableWidgetItem>(currentFiles.at(i)));
        // Placed by index right after the item, although the sorting table may already have
        // moved the item to another row.
        auto *box = new QCheckBox;
        box->setChecked(true);
        box->setFocusPolicy(Qt::NoFocus);
        box->setAccessibleDescription(QStringLiteral("Ticked: installed with Install"));
        ui->twMulti->setCellWidget(i, 1, box);
        connect(box, &QAbstractButton::toggled, this, [this, box] { tellTick(box); });
    }
    // Named once the rows have settled: a box installs the file of the row it stands in.
    for (int row = 0; row < currentFiles.size(); ++row) {
        auto *box = static_cast<QAbstractButton *>(ui->twMulti->cellWidget(row, 1));
        box->setAccessibleName(fileOf(ui->twMulti->item(row, 0)));
        // The box itself is no cell: its cell tells a screen reader moving along the row.
        auto *tick = new QTableWidgetItem;
        tick->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        tick->setData(
            Qt::AccessibleDescriptionRole,
            QStringLiteral("Space ticks or unticks the file; ticked files are installed"));
        ui->twMulti->setItem(row, 1, tick);
        tellTick(box);
    }
    // The current row without selecting it: Space has a row to tick when the focus arrives.
    if (!currentFiles.isEmpty())
        ui->twMulti->selectionModel()->setCurrentIndex(ui->twMulti->model()->index(0, 0),
                                                       QItemSelectionModel::NoUpdate);
}

void MgrDlg::tellTick(const QAbstractButton *box)
{
    for (int row = 0; row < ui->twMulti->rowCount(); ++row) {
        QTableWidgetItem *tick = ui->twMulti->item(row, 1);
        if (ui->twMulti->cellWidget(row, 1) == box && tick)
            tick->setData(Qt::AccessibleTextRole, box->isChecked() ? QStringLiteral("ticked")
                                                                   : QStringLiteral("not ticked"));
    }
}

void MgrDlg::fillSingle()
{
    ui->lwSingle->clear();
    for (const QString &file : qAsConst(currentFiles))
        ui->lwSingle->addItem(fileItem<QListWidgetItem>(file));
    ui->lwSingle->setCurrentRow(0);
}

void MgrDlg::installSingle()
{
    const QListWidgetItem *item = ui->lwSingle->currentItem();
    if (!item)
        return;
    selectedFiles.clear();
    selectedFiles.append(fileOf(item));
    startInstall();
}

void MgrDlg::installMulti()
{
    selectedFiles.clear();
    for (int row = 0; row < ui->twMulti->rowCount(); ++row) {
        const auto *box = static_cast<QAbstractButton *>(ui->twMulti->cellWidget(row, 1));
        if (box && box->isChecked())
            selectedFiles.append(fileOf(ui->twMulti->item(row, 0)));
    }
    startInstall();
}

void MgrDlg::startInstall()
{
    if (selectedFiles.isEmpty() || !currentType)
        return;
    InstallJob job(*currentType, rcList->dir, selectedFiles);
    InstallerDlg dialog(&job, routine);
    hide();
    dialog.exec();
    show();
    ui->lwType->setFocus();
}

void MgrDlg::quit()
{
    close();
}

bool MgrDlg::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return QMainWindow::eventFilter(watched, event);
    const auto *key = static_cast<QKeyEvent *>(event);
    if ((key->modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier)
        return false;
    const bool table = watched == ui->twMulti;
    if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
        (table ? ui->bMInstall : ui->bSInstall)->click();
        return true;
    }
    if (table && key->key() == Qt::Key_Space) {
        if (auto *box = qobject_cast<QAbstractButton *>(
                ui->twMulti->cellWidget(ui->twMulti->currentRow(), 1)))
            box->toggle();
        return true;
    }
    return false;
}

void MgrDlg::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier)
        quit();
    else
        QMainWindow::keyPressEvent(event);
}

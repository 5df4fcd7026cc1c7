#ifndef MGRDLG_H
#define MGRDLG_H

#include "Dispatch.h"

#include <QMainWindow>
#include <QString>
#include <QStringList>

#include <memory>

class QAbstractButton;
class QKeyEvent;
class QListWidgetItem;
class RcList;
struct PackageType;
namespace Ui {
class MainWindow;
}

// The main window: the package types found on the stick, the files of the current type, and
// one installation at a time through the progress dialog.
class MgrDlg : public QMainWindow
{
    Q_OBJECT

public:
    // routine is what each installation's worker runs on its job.
    explicit MgrDlg(RcList *list, installers::Routine routine = installers::dispatch);
    ~MgrDlg() override;

public slots:
    void installSingle();
    void installMulti();
    void changeType(QListWidgetItem *current, QListWidgetItem *previous);
    void quit();

protected:
    // Return in the list or table of files presses Install; Space in the table ticks or unticks
    // the current row.
    bool eventFilter(QObject *watched, QEvent *event) override;
    // Escape closes the window as Close does.
    void keyPressEvent(QKeyEvent *event) override;

private:
    void placeWindow();
    void fillTypeList();
    void addType(const PackageType &type);
    void fillMulti();
    void fillSingle();
    void startInstall();
    // The accessible text of the cell under box: whether its file is ticked.
    void tellTick(const QAbstractButton *box);

    const std::unique_ptr<Ui::MainWindow> ui;
    RcList *rcList = nullptr;
    installers::Routine routine;
    const PackageType *currentType = nullptr;
    QStringList currentFiles;
    QStringList selectedFiles;
};

#endif

#include "InstallDriver.h"

#include "InstallerDlg.h"
#include "MgrDlg.h"
#include "PackageTypes.h"
#include "RcList.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QStackedWidget>
#include <QTableWidget>
#include <QtTest>

namespace {

QString labelText(QObject *dialog)
{
    const auto *label = dialog->findChild<QLabel *>(QStringLiteral("lInstall"));
    return label ? label->text() : QStringLiteral("(no lInstall label)");
}

QListWidgetItem *itemWith(QListWidget *list, const std::function<bool(QListWidgetItem *)> &match)
{
    for (int row = 0; row < list->count(); ++row) {
        if (match(list->item(row)))
            return list->item(row);
    }
    return nullptr;
}

// Scrolls to the item and clicks it.
void clickItem(QListWidget *list, QListWidgetItem *item)
{
    list->scrollToItem(item);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(item).center());
}

} // namespace

InstallDriver::InstallDriver()
{
    qApp->installEventFilter(this);
}

InstallDriver::~InstallDriver()
{
    qApp->removeEventFilter(this);
}

bool InstallDriver::eventFilter(QObject *watched, QEvent *event)
{
    auto *dialog = qobject_cast<InstallerDlg *>(watched);
    if (!dialog)
        return false;
    if (event->type() == QEvent::Show) {
        ++seen.dialogsShown;
        seen.firstText = labelText(dialog);
        seen.dialogStyleSheet = dialog->styleSheet();
        seen.windowHiddenWhileDialogShown = window && !window->isVisible();
    } else if (event->type() == QEvent::Hide) {
        seen.lastText = labelText(dialog);
    }
    return false;
}

InstallDriver::Outcome InstallDriver::install(RcList &list, const QString &type,
                                              const QStringList &files,
                                              const std::function<void()> &beforeInstall)
{
    seen = Outcome();
    MgrDlg main(&list);
    window = &main;
    main.show();
    [&] { QVERIFY(QTest::qWaitForWindowExposed(&main)); }();
    seen.windowStyleSheet = main.styleSheet();

    auto *types = main.findChild<QListWidget *>(QStringLiteral("lwType"));
    auto *single = main.findChild<QListWidget *>(QStringLiteral("lwSingle"));
    auto *multi = main.findChild<QTableWidget *>(QStringLiteral("twMulti"));
    auto *singleInstall = main.findChild<QPushButton *>(QStringLiteral("bSInstall"));
    auto *multiInstall = main.findChild<QPushButton *>(QStringLiteral("bMInstall"));
    const PackageType *row = PackageTypes::find(type);
    [&] {
        QVERIFY(types && single && multi && singleInstall && multiInstall && row);
        QListWidgetItem *typeItem = itemWith(types, [&](QListWidgetItem *item) {
            return &PackageTypes::all().at(item->data(Qt::UserRole).toUInt()) == row;
        });
        QVERIFY2(typeItem, qPrintable(QStringLiteral("type %1 is not listed").arg(type)));
        clickItem(types, typeItem);
        QCOMPARE(types->currentItem(), typeItem);

        QPushButton *button = nullptr;
        if (row->page == SelectionPage::Single) {
            QCOMPARE(files.size(), 1);
            QListWidgetItem *fileItem = itemWith(
                single, [&](QListWidgetItem *item) { return item->text() == files.first(); });
            QVERIFY2(fileItem, qPrintable(QStringLiteral("%1 is not offered").arg(files.first())));
            clickItem(single, fileItem);
            QCOMPARE(single->currentItem(), fileItem);
            button = singleInstall;
        } else {
            QStringList ticked;
            for (int r = 0; r < multi->rowCount(); ++r) {
                auto *box = qobject_cast<QCheckBox *>(multi->cellWidget(r, 1));
                const QTableWidgetItem *item = multi->item(r, 0);
                if (!box || !item)
                    continue;
                box->setChecked(files.contains(item->text()));
                if (box->isChecked())
                    ticked << item->text();
            }
            QCOMPARE(ticked, files);
            button = multiInstall;
        }
        if (beforeInstall)
            beforeInstall();
        // Returns once the progress dialog's modal loop has ended.
        QTest::mouseClick(button, Qt::LeftButton);
    }();
    seen.windowVisibleAfter = main.isVisible();
    window = nullptr;
    return seen;
}

QMap<QString, QStringList> InstallDriver::offered(RcList &list)
{
    QMap<QString, QStringList> result;
    MgrDlg main(&list);
    auto *types = main.findChild<QListWidget *>(QStringLiteral("lwType"));
    auto *single = main.findChild<QListWidget *>(QStringLiteral("lwSingle"));
    auto *multi = main.findChild<QTableWidget *>(QStringLiteral("twMulti"));
    auto *pages = main.findChild<QStackedWidget *>(QStringLiteral("sw"));
    if (!types || !single || !multi || !pages)
        return result;
    for (int row = 0; row < types->count(); ++row) {
        types->setCurrentRow(row);
        QStringList names;
        if (pages->currentWidget()->objectName() == QLatin1String("pSingle")) {
            for (int i = 0; i < single->count(); ++i)
                names << single->item(i)->text();
        } else {
            for (int i = 0; i < multi->rowCount(); ++i) {
                if (const QTableWidgetItem *item = multi->item(i, 0))
                    names << item->text();
            }
        }
        const uint typeRow = types->item(row)->data(Qt::UserRole).toUInt();
        result.insert(PackageTypes::all().at(typeRow).typeKey(), names);
    }
    return result;
}

#include "WidgetClicks.h"

#include <QListWidget>
#include <QtTest>

namespace widgetclicks {

bool clickItem(QListWidget *list, const QString &text)
{
    const QList<QListWidgetItem *> items = list->findItems(text, Qt::MatchExactly);
    if (items.size() != 1)
        return false;
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                      list->visualItemRect(items.first()).center());
    return list->currentItem() == items.first();
}

} // namespace widgetclicks

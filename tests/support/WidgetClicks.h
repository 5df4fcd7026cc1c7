#ifndef WIDGETCLICKS_H
#define WIDGETCLICKS_H

#include <QString>

class QListWidget;

namespace widgetclicks {

// Clicks the one row of list whose text is text, as a user would; false when there is no such
// row, several, or the click did not make it current.
bool clickItem(QListWidget *list, const QString &text);

} // namespace widgetclicks

#endif

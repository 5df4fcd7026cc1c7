#include "WindowKeys.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QPen>
#include <QWidget>

namespace {

// Drawn over the focus widget's edge in the selection colour of that widget's palette, which
// the client's style sheet sets, so that the ring stands out the way a chosen row does.
class Ring : public QWidget
{
public:
    explicit Ring(QWidget *parent) : QWidget(parent)
    {
        setObjectName(QStringLiteral("focusRing"));
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setFocusPolicy(Qt::NoFocus);
        // A sheet giving every widget a background would otherwise cover the focus widget.
        setStyleSheet(QStringLiteral("background: transparent"));
    }
    QColor colour;

protected:
    void paintEvent(QPaintEvent * /*event*/) override
    {
        QPainter painter(this);
        painter.setPen(QPen(colour, 2));
        painter.drawRect(QRectF(rect()).adjusted(1, 1, -1, -1));
    }
};

} // namespace

WindowKeys::WindowKeys(QWidget *window) : QObject(window), window(window)
{
    qApp->installEventFilter(this);
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget * /*old*/, QWidget *now) { follow(now); });
}

bool WindowKeys::eventFilter(QObject *watched, QEvent *event)
{
    const QEvent::Type type = event->type();
    if ((type != QEvent::KeyPress && type != QEvent::KeyRelease) || !watched->isWidgetType() ||
        static_cast<QWidget *>(watched)->window() != window)
        return false;
    if (static_cast<QKeyEvent *>(event)->isAutoRepeat())
        return true;
    if (type == QEvent::KeyPress && !marker) {
        marker = new Ring(window);
        follow(QApplication::focusWidget());
    }
    return false;
}

void WindowKeys::follow(QWidget *focus)
{
    if (!marker)
        return;
    if (!focus || focus->window() != window || focus == window) {
        marker->hide();
        return;
    }
    static_cast<Ring *>(marker.data())->colour =
        focus->palette().color(QPalette::Active, QPalette::Highlight);
    marker->setGeometry(QRect(focus->mapTo(window, QPoint(0, 0)), focus->size()));
    marker->raise();
    marker->show();
    marker->update();
}

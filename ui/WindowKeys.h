#ifndef WINDOWKEYS_H
#define WINDOWKEYS_H

#include <QColor>
#include <QObject>
#include <QPointer>

class QWidget;

// What both windows do with the keyboard beyond the toolkit. A held key's repeats are dropped,
// so that a held Return cannot install twice nor close a dialog the moment it opens. Once the
// keyboard has been used in the window, a ring over the edge of the widget that has the focus
// shows where the keys go: some styles, and style sheets, show no focus on an item view. Until
// then nothing is drawn, so the window looks as before to someone using the mouse.
class WindowKeys : public QObject
{
    Q_OBJECT

public:
    // Lives as long as window, its parent.
    explicit WindowKeys(QWidget *window);

    // The widget drawing the ring; null until the keyboard is first used.
    QWidget *ring() const { return marker; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void follow(QWidget *focus);

    QWidget *const window;
    QPointer<QWidget> marker;
};

#endif

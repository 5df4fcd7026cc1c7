#include "WindowSetup.h"

#include <QFile>
#include <QGuiApplication>
#include <QIcon>
#include <QRect>
#include <QScreen>
#include <QWidget>

// Q_INIT_RESOURCE must be used outside any namespace. The bundle lives in a static library,
// whose resource object the linker would otherwise drop.
static void initIconResources()
{
    Q_INIT_RESOURCE(icons);
}

namespace windowsetup {

namespace {

// A rectangle's centre with right = left + width - 1 and bottom = top + height - 1, in integer
// arithmetic (QRect::center() computes the same, but the rounding is part of the placement).
QPoint centreOf(const QRect &rect)
{
    const int right = rect.left() + rect.width() - 1;
    const int bottom = rect.top() + rect.height() - 1;
    return QPoint((rect.left() + right) / 2, (rect.top() + bottom) / 2);
}

} // namespace

void loadIcons()
{
    initIconResources();
}

QString styleSheet()
{
    QFile file(QStringLiteral("/tmp/.config/default.css"));
    QByteArray bytes;
    if (file.open(QIODevice::ReadOnly))
        bytes = file.readAll();
    const int end = bytes.indexOf('\0');
    return QString::fromLatin1(end < 0 ? bytes : bytes.left(end));
}

void centre(QWidget *window)
{
    const QList<QScreen *> screens = QGuiApplication::screens();
    if (screens.isEmpty())
        return;
    const QRect area = screens.first()->availableGeometry();
    window->move(centreOf(area) - centreOf(window->rect()));
}

void setIconAndTitle(QWidget *window)
{
    // Two slashes, kept as written: the platform may supply that image.
    window->setWindowIcon(QIcon(QStringLiteral("://dax-icons/usb32.png")));
    window->setWindowTitle(QStringLiteral("USB Installer"));
}

} // namespace windowsetup

#include "WindowSetup.h"

#include <QCoreApplication>
#include <QFile>
#include <QGuiApplication>
#include <QIcon>
#include <QImageReader>
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

void enableHighDpi()
{
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::Round);
}

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

QPixmap pngPixmap(const QString &path)
{
    // Opened here: the reader, told the format, would otherwise warn about a missing file.
    QFile file(path);
    const bool doubled =
        qApp && qApp->devicePixelRatio() >= 2 && path.endsWith(QLatin1String(".png"));
    if (doubled)
        file.setFileName(path.chopped(4) + QLatin1String("@2x.png"));
    if (!file.open(QIODevice::ReadOnly)) {
        if (!doubled)
            return QPixmap();
        file.setFileName(path);
        if (!file.open(QIODevice::ReadOnly))
            return QPixmap();
    }
    QImageReader reader(&file, "png");
    reader.setAutoDetectImageFormat(false);
    QPixmap pixmap = QPixmap::fromImage(reader.read());
    if (file.fileName() != path)
        pixmap.setDevicePixelRatio(2);
    return pixmap;
}

void setIconAndTitle(QWidget *window)
{
    // Two slashes, kept as written: the platform may supply that image. The bundle does not
    // hold it, so the window normally has no icon of its own.
    window->setWindowIcon(QIcon(pngPixmap(QStringLiteral("://dax-icons/usb32.png"))));
    window->setWindowTitle(QStringLiteral("USB Installer"));
}

QPixmap titleImage()
{
    return pngPixmap(QStringLiteral(":/dax-icons/usbrc/memorystick.png"));
}

} // namespace windowsetup

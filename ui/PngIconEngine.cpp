#include "PngIconEngine.h"

#include "WindowSetup.h"

#include <QFile>
#include <QImageReader>

PngIconEngine::PngIconEngine(const QString &path) : path(path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    QImageReader reader(&file, "png");
    reader.setAutoDetectImageFormat(false);
    imageSize = reader.size();
}

void PngIconEngine::paint(QPainter *painter, const QRect &rect, QIcon::Mode mode,
                          QIcon::State state)
{
    decoded().paint(painter, rect, Qt::AlignCenter, mode, state);
}

QPixmap PngIconEngine::pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state)
{
    return decoded().pixmap(size, mode, state);
}

// As for an icon made from the image: its size, shrunk to fit keeping its aspect ratio.
QSize PngIconEngine::actualSize(const QSize &size, QIcon::Mode, QIcon::State)
{
    QSize actual = imageSize;
    if (!actual.isEmpty() && (actual.width() > size.width() || actual.height() > size.height()))
        actual.scale(size, Qt::KeepAspectRatio);
    return actual;
}

QList<QSize> PngIconEngine::availableSizes(QIcon::Mode, QIcon::State) const
{
    if (!imageSize.isValid())
        return {};
    return {imageSize};
}

QIconEngine *PngIconEngine::clone() const
{
    return new PngIconEngine(*this);
}

const QIcon &PngIconEngine::decoded()
{
    if (icon.isNull() && imageSize.isValid())
        icon = QIcon(windowsetup::pngPixmap(path));
    return icon;
}

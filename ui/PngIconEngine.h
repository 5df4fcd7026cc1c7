#ifndef PNGICONENGINE_H
#define PNGICONENGINE_H

#include <QIcon>
#include <QIconEngine>
#include <QSize>
#include <QString>

// An icon made from one PNG image that is decoded only when the icon is first drawn, with the
// toolkit's built-in PNG reader; until then only the image's size is read. It draws exactly as
// an icon made from the decoded image. The type list thus decodes the icons of the rows it
// shows, when it first paints them, rather than all of them while the window is built.
class PngIconEngine : public QIconEngine
{
public:
    explicit PngIconEngine(const QString &path);

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State state) override;
    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override;
    QSize actualSize(const QSize &size, QIcon::Mode mode, QIcon::State state) override;
    QList<QSize> availableSizes(QIcon::Mode mode, QIcon::State state) const override;
    QIconEngine *clone() const override;

private:
    const QIcon &decoded();

    QString path;
    QSize imageSize; // invalid when there is no such image
    QIcon icon;      // null until first drawn
};

#endif

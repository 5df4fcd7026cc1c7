#ifndef PICTUREREADER_H
#define PICTUREREADER_H

#include "Finding.h"

#include <QByteArray>
#include <QList>

struct PackageType;

// Pictures larger than this many pixels are reported, not decoded: decoding one takes four
// bytes a pixel.
inline constexpr qint64 maximumPicturePixels = 40'000'000;

// A picture offered as the given types: its real format (from its content), size, and whether
// all of it decodes.
ContentReport readPicture(const QByteArray &data, const QList<const PackageType *> &types);

#endif

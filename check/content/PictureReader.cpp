#include "PictureReader.h"

#include "PackageTypes.h"
#include "TextLines.h"

#include <QBuffer>
#include <QImage>
#include <QImageReader>

#include <mutex>

namespace {

// The name patterns that stand for a format.
QStringList patternsOf(const QByteArray &format)
{
    if (format == "jpeg")
        return {QStringLiteral("*.jpg"), QStringLiteral("*.jpeg")};
    return {QStringLiteral("*.") + QString::fromLatin1(format)};
}

// The toolkit decodes a truncated JPEG without a word (libjpeg only warns and fills in grey):
// the picture's data must end with the end-of-image marker, after its last scan.
bool jpegComplete(const QByteArray &data)
{
    const int lastScan = data.lastIndexOf("\xFF\xDA");
    return lastScan >= 0 && data.indexOf("\xFF\xD9", lastScan) > lastScan;
}

// The decoders' warnings (libjpeg's "Corrupt JPEG data: ...") reach the toolkit's message handler;
// while a picture is decoded on this thread they are collected for its report instead.
thread_local QStringList *decoderWarnings = nullptr;
QtMessageHandler previousHandler = nullptr;

void collectWarnings(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (decoderWarnings && type == QtWarningMsg)
        decoderWarnings->append(message);
    else if (previousHandler)
        previousHandler(type, context, message);
}

QImage decode(QImageReader &reader, QStringList &warnings)
{
    static std::once_flag installed;
    std::call_once(installed, [] { previousHandler = qInstallMessageHandler(collectWarnings); });
    decoderWarnings = &warnings;
    QImage image = reader.read();
    decoderWarnings = nullptr;
    return image;
}

} // namespace

ContentReport readPicture(const QByteArray &data, const QList<const PackageType *> &types)
{
    ContentReport report;
    report.kind = QStringLiteral("picture");
    QByteArray bytes = data; // QBuffer wants a non-const array; this shares it
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    const QByteArray format = reader.format();
    if (format.isEmpty()) {
        report.summary = QStringLiteral("not a picture");
        report.error(QStringLiteral("picture-unknown"),
                     QStringLiteral("The content is no picture format the client reads."));
        return report;
    }
    const QSize size = reader.size();
    const QString formatName = QString::fromLatin1(format.toUpper());
    report.summary = size.isValid() ? QStringLiteral("%1 picture, %2x%3")
                                          .arg(formatName)
                                          .arg(size.width())
                                          .arg(size.height())
                                    : QStringLiteral("%1 picture").arg(formatName);

    Finding mismatch{Finding::Severity::Warning, QStringLiteral("picture-format-mismatch"), {}, {}};
    for (const PackageType *type : types) {
        bool named = false;
        for (const QString &pattern : patternsOf(format))
            named = named || type->patternList().contains(pattern, Qt::CaseInsensitive);
        if (!named)
            mismatch.types.append(type->typeKey());
    }
    if (!mismatch.types.isEmpty()) {
        mismatch.text = QStringLiteral("The content is %1, not a format these types take (%2).")
                            .arg(formatName, PackageTypes::find(mismatch.types.first())->patterns);
        if (mismatch.types.size() == types.size()) {
            mismatch.text =
                QStringLiteral("The content is %1, a format no type takes.").arg(formatName);
            mismatch.types.clear();
        }
        report.findings.append(mismatch);
    }

    if (!size.isValid()) {
        report.error(QStringLiteral("picture-corrupt"),
                     QStringLiteral("The picture's size cannot be read: it is damaged."));
        return report;
    }
    const qint64 pixels = qint64(size.width()) * size.height();
    if (pixels > maximumPicturePixels) {
        report.warning(
            QStringLiteral("picture-too-large"),
            QStringLiteral("%1x%2 is %3 pixels, above the check's cap of %4: not decoded.")
                .arg(size.width())
                .arg(size.height())
                .arg(pixels)
                .arg(maximumPicturePixels));
        return report;
    }
    QStringList warnings;
    const QImage image = decode(reader, warnings);
    if (image.isNull())
        report.error(QStringLiteral("picture-corrupt"),
                     QStringLiteral("The picture does not decode: %1.").arg(reader.errorString()));
    else if (format == "jpeg" && !jpegComplete(data))
        report.error(
            QStringLiteral("picture-truncated"),
            QStringLiteral("The JPEG data stops before its end: the picture is truncated."));
    else if (!warnings.isEmpty())
        report.error(
            QStringLiteral("picture-damaged"),
            QStringLiteral("The decoder reports damage: %1.").arg(quoted(warnings.first())));
    return report;
}

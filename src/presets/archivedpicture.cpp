// SPDX-License-Identifier: GPL-3.0-or-later

#include "presets/archivedpicture.h"

#include "imageio/imagedestination.h"
#include "imageio/imageformat.h"
#include "platform/bytebudget.h"

#include <QBuffer>

#include <algorithm>
#include <array>

namespace plexa
{
namespace
{

/// The longer side of the pixels that stand beside a drawing.
constexpr double kDrawingSide = 2048;

/// What representations are, whatever their name says: TIFF files, and now and then others.
const ImageFormat *formatOf(const QByteArray &bytes)
{
    const ImageFormat *const format =
        imageFormatOfContents(QByteArrayView(bytes).first(std::min<qsizetype>(bytes.size(), 64)));
    constexpr std::array kTypes{"image/tiff", "image/png", "image/jpeg"};
    const bool isExpected = format && std::any_of(kTypes.begin(), kTypes.end(), [format](const char *type) {
                                return QLatin1StringView(type) == QLatin1StringView(format->type);
                            });
    return isExpected ? format : nullptr;
}

struct Representation {
    const QByteArray *bytes;
    const ImageFormat *format;
    PictureInfo info;

    qint64 pixels() const { return qint64(info.rows.size.width()) * info.rows.size.height(); }
};

QImage decodedImage(const Representation &representation, const ReadLimits &limits)
{
    QBuffer buffer;
    buffer.setData(*representation.bytes);
    buffer.open(QIODevice::ReadOnly);
    const auto reader = representation.format->codec->openReader(buffer, limits, 1);
    if (!reader)
        return {};
    QImage image((*reader)->format().size, (*reader)->format().imageFormat());
    if (image.isNull() || !(*reader)->readRows(image, image.height()))
        return {};
    return image;
}

} // namespace

WatermarkPicture PictureDecoder::picture(const ArchivedValue &image)
{
    if (image.isNone())
        return {};
    const auto known = m_known.constFind(image.identity());
    if (known != m_known.cend())
        return *known;
    return *m_known.insert(image.identity(), decoded(image));
}

WatermarkPicture PictureDecoder::decoded(const ArchivedValue &image)
{
    const QList<ArchivedImage> images = image.imageRepresentations();
    if (!images.isEmpty() && !images.first().svg.isEmpty()) {
        const Result<WatermarkPicture> drawing = WatermarkPicture::fromSvg(images.first().svg);
        if (drawing)
            return *drawing;
    }
    const qint64 memory = physicalMemoryBytes() / 4;
    const ReadLimits limits{.maxPixels = memory / 4, .maxBytes = memory};
    std::vector<Representation> representations;
    for (const ArchivedImage &archived : images) {
        QBuffer buffer;
        buffer.setData(archived.tiff);
        buffer.open(QIODevice::ReadOnly);
        const ImageFormat *const format = formatOf(archived.tiff);
        const Result<PictureInfo> info =
            format ? format->codec->readInfo(buffer, limits) : Result<PictureInfo>(fail({}));
        if (info)
            representations.push_back({&archived.tiff, format, *info});
    }
    std::stable_sort(
        representations.begin(), representations.end(),
        [](const Representation &a, const Representation &b) { return a.pixels() > b.pixels(); });
    for (const Representation &representation : representations) {
        const qint64 bytes = 4 * representation.pixels();
        if (bytes + representation.info.decoderBytes > memory - m_bytes) {
            m_isExhausted = true;
            return {};
        }
        const QImage pixels = decodedImage(representation, limits);
        if (pixels.isNull())
            continue;
        m_bytes += bytes;
        return WatermarkPicture::fromImage(pixels);
    }
    return {};
}

Result<ArchivedImage> archivedImage(const WatermarkPicture &picture)
{
    ArchivedImage archived{picture.size(), {}, picture.svg()};
    QImage image;
    if (archived.svg.isEmpty()) {
        image = picture.image();
    } else {
        const double side = std::max(picture.size().width(), picture.size().height());
        const QSize size = (picture.size() * (kDrawingSide / side)).toSize();
        image = picture.imageOfSize(size.expandedTo(QSize(1, 1)));
    }
    image.convertTo(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    QBuffer buffer(&archived.tiff);
    buffer.open(QIODevice::ReadWrite);
    CopyRequest request;
    request.type = QStringLiteral("image/tiff");
    const Result<void> written = writeImage(buffer, image, request);
    if (!written)
        return tl::unexpected(written.error());
    return archived;
}

} // namespace plexa

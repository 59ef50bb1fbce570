// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/imagedestination.h"

#include "imageio/base/picturefailures.h"
#include "imageio/embedded/embeddedmetadata.h"
#include "imageio/imagesource.h"
#include "metadata/propertykeys.h"
#include "raster/orientation.h"

#include <QPainter>

#include <utility>

namespace plexa
{

namespace
{

/// The size of a thumbnail of 160 pixels with much detail at good quality.
constexpr qsizetype kThumbnailBytes = 10'000;

/// Puts translucent pixels onto white for a writer without alpha.
class FlatteningWriter final : public RowWriter
{
public:
    FlatteningWriter(std::unique_ptr<RowWriter> writer, QSize size)
        : RowWriter({size, true})
        , m_writer(std::move(writer))
    {
    }

    Result<void> finish() override { return m_writer->finish(); }

private:
    Result<void> encodeRows(const QImage &strip, int count) override
    {
        constexpr int kRows = 64;
        for (int done = 0; done < count; done += kRows) {
            const int rows = qMin(kRows, count - done);
            QImage flat(strip.width(), rows, QImage::Format_RGB32);
            if (flat.isNull())
                return fail(PictureFailures::outOfMemory());
            flat.fill(Qt::white);
            QPainter(&flat).drawImage(0, -done, strip);
            if (const auto written = m_writer->writeRows(flat, rows); !written)
                return written;
        }
        return {};
    }

    std::unique_ptr<RowWriter> m_writer;
};

double positiveNumber(const QVariantMap &properties, const QString &key)
{
    const double number = properties.value(key).toDouble();
    return number > 0 ? number : 0;
}

/// The sampling factors of a picture after its orientation is applied: "21,11,11" becomes "12,11,11".
QByteArray turnedSampling(QByteArray sampling, int orientation)
{
    for (qsizetype at = 0; at + 1 < sampling.size() && orientation >= 5; at += 3)
        std::swap(sampling[at], sampling[at + 1]);
    return sampling;
}

/// The options for the pixels, without metadata.
WriteOptions pictureOptions(const CopyRequest &request)
{
    const QVariantMap &properties = request.properties;
    WriteOptions options;
    options.quality = qBound(
        0.0, properties.value(kCGImageDestinationLossyCompressionQuality, options.quality).toDouble(), 1.0);
    options.dpi[0] = positiveNumber(properties, kCGImagePropertyDPIWidth);
    options.dpi[1] = positiveNumber(properties, kCGImagePropertyDPIHeight);
    const QVariantMap tiff = properties.value(kCGImagePropertyTIFFDictionary).toMap();
    options.software = tiff.value(kCGImagePropertyTIFFSoftware).toString().toLatin1().left(100);
    options.tiffLzw = tiff.value(kCGImagePropertyTIFFCompression, 5).toInt() != 1;
    if (request.source) {
        options.isProgressive = request.source->info().isProgressive;
        options.chromaSampling = turnedSampling(request.source->info().chromaSampling, request.orientation);
    }
    return options;
}

/// The rows for the format's codec.
RowFormat writtenFormat(const RowFormat &format, const ImageFormat &target)
{
    return {format.size, format.hasAlpha && target.writesAlpha};
}

/// The options for the pixels and the metadata.
/// @param size  of the copy
Result<WriteOptions> allOptions(const ImageFormat &target, QSize size, const CopyRequest &request)
{
    const QVariantMap &properties = request.properties;
    WriteOptions options = pictureOptions(request);
    const auto read = request.source ? request.source->metadata() : EmbeddedMetadata::none();
    if (!read)
        return tl::unexpected(read.error());
    const EmbeddedMetadata &metadata = **read;
    const bool hasThumbnail = metadata.hasThumbnail() && target.codec->keepsThumbnail;
    const EmbeddedMetadata::CopyFacts facts = {size,
                                               hasThumbnail ? kThumbnailBytes : 0,
                                               target.codec->maxExifBytes,
                                               target.codec->keepsIptc,
                                               request.cleared,
                                               request.isTurned,
                                               target.codec->keepsExif};
    const EmbeddedMetadata::Encoded encoded = metadata.encodeForCopy(properties, facts);
    if (request.omitted) {
        *request.omitted += encoded.omitted;
        const QString comment = QStringLiteral("comment");
        if (!encoded.comment.isEmpty() && !target.codec->keepsComment && !encoded.omitted.contains(comment))
            *request.omitted += comment;
    }
    options.exif = encoded.exif;
    options.thumbnailPlaceholder = encoded.thumbnailPlaceholder;
    options.iptc = encoded.iptc;
    options.imageResources = encoded.imageResources;
    options.xmp = encoded.xmp;
    options.comment = encoded.comment;
    options.texts = encoded.texts;
    return options;
}

} // namespace

qint64 destinationBytes(const RowFormat &format, const CopyRequest &request)
{
    const ImageFormat *target = imageFormatOfType(request.type);
    return target && target->codec->writerBytes
               ? target->codec->writerBytes(writtenFormat(format, *target), pictureOptions(request))
               : 0;
}

Result<std::unique_ptr<RowWriter>> openDestination(QIODevice &device, const RowFormat &format,
                                                   const CopyRequest &request)
{
    const ImageFormat *target = imageFormatOfType(request.type);
    if (!target || !target->canWrite)
        return fail(PictureFailures::cannotWrite(request.type));
    const Result<WriteOptions> options = allOptions(*target, format.size, request);
    if (!options)
        return tl::unexpected(options.error());
    const bool flattens = format.hasAlpha && !target->writesAlpha;
    const RowFormat written = writtenFormat(format, *target);
    Result<std::unique_ptr<RowWriter>> writer = target->codec->openWriter(device, written, *options);
    if (!writer || !flattens)
        return writer;
    return std::make_unique<FlatteningWriter>(std::move(*writer), format.size);
}

std::optional<QString> writeRetouched(QIODevice &device, const CopyRequest &request, const Retouch &retouch)
{
    if (!canRetouch(request))
        return std::nullopt;
    const QSize size = orientedSize(request.source->info().rows.size, request.orientation);
    const Result<WriteOptions> options = allOptions(request.source->format(), size, request);
    return options ? request.source->retouch(device, *options, retouch) : std::nullopt;
}

bool canRetouch(const CopyRequest &request)
{
    return request.source && request.source->type() == request.type &&
           request.source->format().codec->retouch;
}

qint64 retouchBytes(const CopyRequest &request, int orientation)
{
    return canRetouch(request) ? request.source->format().codec->retouchBytes(
                                     request.source->info(), pictureOptions(request), orientation)
                               : 0;
}

Result<void> writeImage(QIODevice &device, const QImage &image, const CopyRequest &request)
{
    const RowFormat format = {image.size(), image.hasAlphaChannel()};
    const QImage rows = image.convertToFormat(format.imageFormat());
    if (rows.isNull())
        return fail(PictureFailures::outOfMemory());
    Result<std::unique_ptr<RowWriter>> writer = openDestination(device, format, request);
    if (!writer)
        return tl::unexpected(writer.error());
    if (const auto written = (*writer)->writeRows(rows, rows.height()); !written)
        return written;
    return (*writer)->finish();
}

QStringList droppedPictures(const ImageSource &source)
{
    // A preview is a smaller copy of the photo.
    QStringList pictures = source.info().unmarkedPictures;
    pictures.removeAll(u"preview"_qs);
    return pictures;
}

} // namespace plexa

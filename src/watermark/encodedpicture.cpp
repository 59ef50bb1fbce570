// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/encodedpicture.h"

#include "imageio/base/picturefailures.h"
#include "imageio/embedded/storedfacts.h"
#include "platform/bytebudget.h"
#include "raster/orientation.h"
#include "watermark/scaledpictures.h"

#include <QBuffer>
#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <mutex>

namespace plexa
{
namespace
{

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(plexa::EncodedPicture)
};

constexpr qint64 kBytesPerPixel = 4;

/// Decoded 1 GiB: far more than any logo.
constexpr qint64 kMaxPixels = qint64{1} << 28;

/// The share of the machine's memory for one picture.
constexpr int kShareOfMemory = 4;

/// For all decoded pictures: some logos of the size of a photo.
constexpr qint64 kMaxCachedBytes = qint64{256} << 20;

/// Larger pictures are decoded one at a time by all threads.
constexpr qint64 kManyPixels = 16'000'000;

/// Rows that are rotated at a time.
constexpr int kStripRows = 256;

/// Representations are TIFF files, sometimes others, whatever their name is.
const ImageFormat *formatOf(QByteArrayView bytes)
{
    const ImageFormat *const format =
        imageFormatOfContents(bytes.first(std::min<qsizetype>(bytes.size(), 64)));
    constexpr std::array kTypes{"image/tiff", "image/png", "image/jpeg"};
    const bool isExpected = format && std::any_of(kTypes.begin(), kTypes.end(), [format](const char *type) {
                                return QLatin1StringView(type) == QLatin1StringView(format->type);
                            });
    return isExpected ? format : nullptr;
}

QByteArray wrapped(QByteArrayView bytes)
{
    return QByteArray::fromRawData(bytes.data(), bytes.size());
}

/// The decoded pictures that were used last.
std::shared_ptr<ScaledPictures> cache()
{
    static const auto pictures = std::make_shared<ScaledPictures>(kMaxCachedBytes);
    return pictures;
}

} // namespace

ReadLimits EncodedPicture::readLimits()
{
    const qint64 memory = physicalMemoryBytes() / kShareOfMemory;
    return {.maxPixels = std::min(kMaxPixels, memory / kBytesPerPixel), .maxBytes = memory};
}

EncodedPicture::EncodedPicture(std::vector<Representation> representations)
    : m_representations(std::move(representations))
    , m_cache(cache())
{
}

EncodedPicture::~EncodedPicture()
{
    m_cache->remove(this);
}

Result<EncodedPicture::Representation> EncodedPicture::measured(QByteArrayView bytes)
{
    const ImageFormat *const format = formatOf(bytes);
    if (!format)
        return fail(PictureFailures::notAPicture());
    QByteArray contents = wrapped(bytes);
    QBuffer buffer(&contents);
    buffer.open(QIODevice::ReadOnly);
    const ReadLimits limits = readLimits();
    const Result<PictureInfo> info = format->codec->readInfo(buffer, limits);
    if (!info)
        return tl::unexpected(info.error());
    const QSize size = info->rows.size;
    const qint64 pixels = qint64{size.width()} * size.height();
    if (info->decoderBytes > limits.maxBytes - pixels * kBytesPerPixel)
        return fail(
            PictureFailures::tooMuchMemory(size, info->decoderBytes + pixels * kBytesPerPixel, limits));
    return Representation{bytes, format, size, storedOrientation(buffer)};
}

Result<std::shared_ptr<const EncodedPicture>>
EncodedPicture::fromRepresentations(const QList<QByteArrayView> &representations)
{
    std::vector<Representation> readable;
    QString fault = Texts::tr("it has no pixels, or they are of an unknown kind");
    bool isFirst = true;
    for (const QByteArrayView bytes : representations) {
        if (const Result<Representation> representation = measured(bytes))
            readable.push_back(*representation);
        else if (std::exchange(isFirst, false))
            fault = representation.error().text;
    }
    if (readable.empty())
        return fail(fault);
    const auto pixels = [](const Representation &representation) {
        return qint64{representation.size.width()} * representation.size.height();
    };
    std::stable_sort(readable.begin(), readable.end(),
                     [&](const Representation &a, const Representation &b) { return pixels(a) > pixels(b); });
    return std::shared_ptr<const EncodedPicture>(new EncodedPicture(std::move(readable)));
}

Result<QImage> EncodedPicture::decode(const Representation &representation)
{
    QByteArray contents = wrapped(representation.bytes);
    QBuffer buffer(&contents);
    buffer.open(QIODevice::ReadOnly);
    const auto reader = representation.format->codec->openReader(buffer, readLimits(), 1);
    if (!reader)
        return tl::unexpected(reader.error());
    const RowFormat rows = (*reader)->format();
    const int height = rows.size.height();
    QImage image(orientedSize(rows.size, representation.orientation), rows.imageFormat());
    const bool isUpright = representation.orientation == 1;
    QImage strip(isUpright ? QSize() : QSize(rows.size.width(), std::min(height, kStripRows)),
                 rows.imageFormat());
    if (image.isNull() || (!isUpright && strip.isNull()))
        return fail(PictureFailures::outOfMemory());
    const int step = isUpright ? height : strip.height();
    for (int row = 0; row < height; row += step) {
        const int count = std::min(step, height - row);
        if (const Result<void> read = (*reader)->readRows(isUpright ? image : strip, count); !read)
            return tl::unexpected(read.error());
        if (!isUpright)
            placeOrientedRows(image, strip, count, row, rows.size, representation.orientation);
    }
    return image;
}

QSize EncodedPicture::size() const
{
    return orientedSize(m_representations.front().size, m_representations.front().orientation);
}

Result<QImage> EncodedPicture::decodeLargest() const
{
    static std::mutex largePictures;
    std::unique_lock oneAtATime(largePictures, std::defer_lock);
    if (qint64{size().width()} * size().height() > kManyPixels)
        oneAtATime.lock();
    Result<QImage> first = decode(m_representations.front());
    Result<QImage> image = first;
    for (std::size_t i = 1; !image && i < m_representations.size(); ++i)
        image = decode(m_representations[i]);
    return image ? image : first;
}

Result<QImage> EncodedPicture::decoded() const
{
    Result<QImage> image;
    const auto decode = [&] {
        image = decodeLargest();
        return image.value_or(QImage());
    };
    const QImage cached = m_cache->find(this, size(), decode, {});
    if (!image)
        return image;
    return cached;
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/encodedpicture.h"

#include "imageio/base/picturefailures.h"
#include "imageio/embedded/storedorientation.h"
#include "platform/bytebudget.h"
#include "raster/orientation.h"

#include <QBuffer>
#include <QCache>
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

/// Decoded, this is 1 GiB: far more than any logo, and less than a list should be able to ask for.
constexpr qint64 kMaxPixels = qint64{1} << 28;

/// A share of the memory that a machine has.
constexpr int kShareOfMemory = 4;

/// All pictures together: some logos of the size of a photo.
constexpr int kMaxKeptKilobytes = 256 * 1024;

/// Pictures above this are decoded one after the other, by all threads.
constexpr qint64 kManyPixels = 16'000'000;

/// Rows that are turned at a time.
constexpr int kStripRows = 256;

/// What representations are, whatever their name says: TIFF files, and now and then others.
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

/// The bytes themselves, not a copy.
QByteArray wrapped(QByteArrayView bytes)
{
    return QByteArray::fromRawData(bytes.data(), bytes.size());
}

} // namespace

/// The decoded pictures that were used last.
class EncodedPicture::Kept
{
public:
    static std::shared_ptr<Kept> shared()
    {
        static const auto kept = std::make_shared<Kept>();
        return kept;
    }

    QImage image(const EncodedPicture *picture) const
    {
        const std::lock_guard guard(m_lock);
        const QImage *const found = m_images.object(picture);
        return found ? *found : QImage();
    }

    void insert(const EncodedPicture *picture, const QImage &image)
    {
        const auto kilobytes = static_cast<qsizetype>(image.sizeInBytes() / 1024);
        const std::lock_guard guard(m_lock);
        m_images.insert(picture, new QImage(image), kilobytes + 1); // one that is too large is not kept
    }

    void remove(const EncodedPicture *picture)
    {
        const std::lock_guard guard(m_lock);
        m_images.remove(picture);
    }

private:
    mutable std::mutex m_lock;
    QCache<const EncodedPicture *, QImage> m_images{kMaxKeptKilobytes}; // guarded by m_lock
};

ReadLimits EncodedPicture::readLimits()
{
    const qint64 memory = physicalMemoryBytes() / kShareOfMemory;
    return {.maxPixels = std::min(kMaxPixels, memory / kBytesPerPixel), .maxBytes = memory};
}

EncodedPicture::EncodedPicture(std::vector<Representation> representations)
    : m_representations(std::move(representations))
    , m_kept(Kept::shared())
{
}

EncodedPicture::~EncodedPicture()
{
    m_kept->remove(this);
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

Result<QImage> EncodedPicture::decoded() const
{
    if (QImage image = m_kept->image(this); !image.isNull())
        return image;
    static std::mutex largePictures;
    std::unique_lock oneAtATime(largePictures, std::defer_lock);
    if (qint64{size().width()} * size().height() > kManyPixels) {
        oneAtATime.lock();
        if (QImage image = m_kept->image(this); !image.isNull())
            return image;
    }
    Result<QImage> first = decode(m_representations.front());
    Result<QImage> image = first;
    for (std::size_t i = 1; !image && i < m_representations.size(); ++i)
        image = decode(m_representations[i]);
    if (!image)
        return first;
    m_kept->insert(this, *image);
    return image;
}

} // namespace plexa

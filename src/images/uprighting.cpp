// SPDX-License-Identifier: GPL-3.0-or-later

#include "images/uprighting.h"

#include "imageio/base/picturefailures.h"
#include "images/strips.h"
#include "metadata/imagemetadata.h"
#include "raster/bitmaputilities.h"
#include "raster/orientation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <new>

namespace plexa
{

namespace
{

// The linear part of each orientation: (x, y) goes to (a x + c y, b x + d y), y upwards.
struct Turn {
    int a, b, c, d;
    bool operator==(const Turn &) const = default;
};

constexpr std::array<Turn, 8> kTurns = {{{1, 0, 0, 1},
                                         {-1, 0, 0, 1},
                                         {-1, 0, 0, -1},
                                         {1, 0, 0, -1},
                                         {0, -1, -1, 0},
                                         {0, -1, 1, 0},
                                         {0, 1, 1, 0},
                                         {0, 1, -1, 0}}};

constexpr qint64 kUnreservedBytes = 64 * 1024 * 1024; // a picture for a large screen

/// The orientation that has the effect of the transform.
int orientationOf(ImageTransform transform)
{
    constexpr std::array<int, 5> kOrientations = {6, 8, 3, 2, 4};
    return kOrientations[static_cast<std::size_t>(transform) - 1];
}

QSize scaledBy(QSize size, double scaleX, double scaleY)
{
    return {static_cast<int>(std::lround(size.width() * scaleX)),
            static_cast<int>(std::lround(size.height() * scaleY))};
}

/// The whole picture, each strip placed where the orientation has it.
Result<QImage> readOriented(RowReader &reader, int orientation, const CancelCheck &isCanceled)
{
    const RowFormat format = reader.format();
    QImage picture(orientedSize(format.size, orientation), format.imageFormat());
    if (picture.isNull())
        return fail(outOfMemoryText());
    const auto place = [&](const QImage &strip, int firstRow, int count) -> Result<void> {
        placeOrientedRows(picture, strip, count, firstRow, format.size, orientation);
        return {};
    };
    const Result<void> read =
        orientation == 1 ? readStrips(reader, picture, isCanceled) : forEachStrip(reader, place, isCanceled);
    if (!read)
        return tl::unexpected(read.error());
    return picture;
}

} // namespace

qint64 pictureBytes(QSize size)
{
    return qint64(size.width()) * size.height() * qint64(sizeof(QRgb));
}

int composedOrientation(int first, int second)
{
    const Turn &one = kTurns[static_cast<std::size_t>(first - 1)];
    const Turn &two = kTurns[static_cast<std::size_t>(second - 1)];
    const Turn both{two.a * one.a + two.c * one.b, two.b * one.a + two.d * one.b,
                    two.a * one.c + two.c * one.d, two.b * one.c + two.d * one.d};
    return static_cast<int>(std::find(kTurns.begin(), kTurns.end(), both) - kTurns.begin()) + 1;
}

int inverseOrientation(int orientation)
{
    constexpr int kQuarterTurns = 6 + 8;
    return orientation == 6 || orientation == 8 ? kQuarterTurns - orientation : orientation;
}

ImageTransform inverseTransform(ImageTransform transform)
{
    switch (transform) {
    case ImageTransform::RotateClockwise:
        return ImageTransform::RotateCounterClockwise;
    case ImageTransform::RotateCounterClockwise:
        return ImageTransform::RotateClockwise;
    default:
        return transform;
    }
}

int orientationAfter(int orientation, ImageTransform transform)
{
    return composedOrientation(orientation, orientationOf(transform));
}

QSize Uprighting::size() const
{
    return orientedSize(scaledBy(stored, scaleX, scaleY), orientation);
}

QSize Uprighting::unscaledSize() const
{
    return orientedSize(stored, orientation);
}

Uprighting uprightingOf(QSize stored, const ImageMetadata &metadata, int turns, const ReadLimits &limits)
{
    Uprighting result;
    result.stored = stored;
    result.orientation = composedOrientation(metadata.orientationCorrected(), turns);

    const double dx = metadata.dpiWidth().toDouble();
    const double dy = metadata.dpiHeight().toDouble();
    if (!(dx > 0 && dy > 0) || !std::isfinite(dx) || !std::isfinite(dy) || dx == dy)
        return result;
    const double scaleX = dx < dy ? dy / dx : 1;
    const double scaleY = dy < dx ? dx / dy : 1;
    const double pixels = scaleX * stored.width() * scaleY * stored.height();
    // A resolution that would blow the photo up beyond all bounds is a mistake, not a shape of pixels.
    if (pixels > static_cast<double>(limits.maxPixels) || pixels * 4 > static_cast<double>(limits.maxBytes) ||
        scaleX * stored.width() > 65'535 || scaleY * stored.height() > 65'535)
        return result;
    result.scaleX = scaleX;
    result.scaleY = scaleY;
    return result;
}

Result<QImage> readUpright(const ImageSource &source, const Uprighting &uprighting, int reducedTo,
                           const CancelCheck &isCanceled, QString *notice)
{
    const Result<std::unique_ptr<RowReader>> reader = source.openRows(reducedTo);
    if (!reader)
        return tl::unexpected(reader.error());
    const Result<QImage> stored =
        readOriented(**reader, uprighting.isStretched() ? 1 : uprighting.orientation, isCanceled);
    if (notice)
        *notice = (*reader)->notice();
    if (!stored || !uprighting.isStretched())
        return stored;
    QImage upright =
        createImageUpright(*stored, uprighting.orientation, uprighting.scaleX, uprighting.scaleY);
    return upright.isNull() ? *stored : upright;
}

qint64 uprightBytes(const ImageSource &source, const Uprighting &uprighting, int reducedTo)
{
    const qint64 decoding = source.imageBytes(reducedTo);
    if (!uprighting.isStretched()) // the rows of a rotated photo go straight to their places
        return decoding;
    // The stored picture, the rotated one and the stretched one exist at the same time.
    const QSize stored = source.imageSize(reducedTo);
    const qint64 storedBytes = pictureBytes(stored);
    const qint64 turnedBytes = uprighting.orientation == 1 ? 0 : storedBytes;
    const qint64 stretchedBytes = pictureBytes(scaledBy(stored, uprighting.scaleX, uprighting.scaleY));
    return std::max(decoding, storedBytes + turnedBytes + stretchedBytes);
}

QImage turnedPhoto(const QImage &photo, ImageTransform transform)
{
    return createImageUpright(photo, orientationOf(transform), 1, 1);
}

QImage turnedThumbnail(const QImage &thumbnail, ImageTransform transform)
{
    // Stored mirrored top to bottom, so its quarter turns go the other way.
    return createImageUpright(thumbnail, inverseOrientation(orientationOf(transform)), 1, 1);
}

Result<ByteBudget::Reservation> reserveForPhoto(ByteBudget &budget, QSize size, qint64 bytes)
{
    if (bytes <= 0)
        return ByteBudget::Reservation();
    if (bytes > budget.total())
        return fail(PictureFailures::tooMuchMemory(size, bytes, ReadLimits{.maxBytes = budget.total()}));
    return budget.reserve(bytes);
}

Result<QImage> readUprightWithin(ByteBudget &budget, const ImageSource &source, const Uprighting &uprighting,
                                 int reducedTo, const CancelCheck &isCanceled)
{
    const qint64 bytes = uprightBytes(source, uprighting, reducedTo);
    const bool isSmall = reducedTo > 0 && bytes <= kUnreservedBytes;
    const Result<ByteBudget::Reservation> room =
        reserveForPhoto(budget, source.info().rows.size, isSmall ? 0 : bytes);
    if (!room)
        return tl::unexpected(room.error());
    return readUpright(source, uprighting, reducedTo, isCanceled);
}

Result<QImage> readReducedVersion(const UprightVersion &photo, int minimumSide, const PhotoServices &services,
                                  const CancelCheck &isCanceled)
{
    try {
        const Result<ImageSource> source = ImageSource::open(photo.path, services.limits);
        if (!source)
            return tl::unexpected(source.error());
        if (source->version() != photo.version)
            return fail(PictureFailures::changedMeanwhile());
        const int side = std::max(minimumSide, 1);
        Result<QImage> picture =
            readUprightWithin(services.budget, *source, photo.uprighting, side, isCanceled);
        if (const Result<void> unchanged = source->checkUnchanged(); !unchanged)
            return tl::unexpected(unchanged.error());
        return picture;
    } catch (const std::bad_alloc &) {
        return fail(outOfMemoryText());
    }
}

bool turnCachedPhoto(PixelCache &cache, const PixelCache::Key &key, ImageTransform transform)
{
    const QImage photo = cache.find(key);
    if (photo.isNull())
        return true;
    const QImage turned = turnedPhoto(photo, transform);
    if (turned.isNull())
        return false;
    cache.insert(key, turned);
    return true;
}

} // namespace plexa

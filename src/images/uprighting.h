// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/imagesource.h"
#include "images/photoservices.h"
#include "images/pixelcache.h"
#include "images/strips.h"

#include <QSize>

#include <optional>

namespace plexa
{

class ImageMetadata;

/// A rotation or mirroring that the user applies to a photo.
enum class ImageTransform {
    RotateClockwise = 1,
    RotateCounterClockwise = 2,
    RotateHalf = 3,
    MirrorLeftRight = 4,
    MirrorTopBottom = 5,
};

/// The transform that undoes another one.
ImageTransform inverseTransform(ImageTransform transform);

/// The orientation (1..8, numbered as EXIF does) of a photo of that orientation after one more transform.
int orientationAfter(int orientation, ImageTransform transform);

/// The orientation that has the effect of `first` followed by `second`.
int composedOrientation(int first, int second);

/// The orientation that undoes another one.
int inverseOrientation(int orientation);

/// An upright photo after the transform; null when there is no memory for it.
QImage turnedPhoto(const QImage &photo, ImageTransform transform);

/// The same for a thumbnail, which is stored mirrored top to bottom.
QImage turnedThumbnail(const QImage &thumbnail, ImageTransform transform);

/// How the stored pixels of a photo become the upright picture: rotated and mirrored by the orientation in
/// its metadata and the user's turns, stretched so that its pixels are square.
struct Uprighting {
    QSize stored;        ///< pixels in the file
    int orientation = 1; ///< 1..8, the user's turns included
    double scaleX = 1;   ///< stretch along the stored x axis, >= 1
    double scaleY = 1;

    bool operator==(const Uprighting &) const = default;

    bool isStretched() const { return scaleX != 1 || scaleY != 1; }
    bool isIdentity() const { return orientation == 1 && !isStretched(); }

    /// Pixels of the upright picture.
    QSize size() const;

    /// Pixels of the upright picture without the stretch.
    QSize unscaledSize() const;
};

/// @param metadata  as in the file, for the orientation and the resolutions
/// @param turns     the user's turns as an orientation
/// @param limits    a stretch that would exceed them is left out
Uprighting uprightingOf(QSize stored, const ImageMetadata &metadata, int turns, const ReadLimits &limits);

/// The whole upright picture.
/// @param reducedTo    0 for the full size; else the least pixels of the stored picture's longer side (as
///                     ImageSource::createImage())
/// @param isCanceled  asked before each strip of rows
/// @param notice       receives RowReader::notice(); may be null
[[nodiscard]] Result<QImage> readUpright(const ImageSource &source, const Uprighting &uprighting,
                                         int reducedTo = 0, const CancelCheck &isCanceled = {},
                                         QString *notice = nullptr);

/// The memory (bytes) of a decoded picture.
qint64 pictureBytes(QSize size);

/// The most memory (bytes) that readUpright() of the same arguments needs, its result included.
qint64 uprightBytes(const ImageSource &source, const Uprighting &uprighting, int reducedTo = 0);

/// Waits for the memory that the work on one photo needs, all in one call, because a thread that holds a
/// reservation must not wait for another.
/// @param size   pixels of the photo, for the failure's text
/// @param bytes  0: does not wait
/// @return a failure, at once, when `bytes` exceeds the budget
[[nodiscard]] Result<ByteBudget::Reservation> reserveForPhoto(ByteBudget &budget, QSize size, qint64 bytes);

/// readUpright() within a budget: waits for the memory that it needs and releases it on return. A reduced
/// picture that takes at most 64 MB does not wait: thumbnails and the preview must not stop while photos are
/// saved. The calling thread must not hold a reservation.
[[nodiscard]] Result<QImage> readUprightWithin(ByteBudget &budget, const ImageSource &source,
                                               const Uprighting &uprighting, int reducedTo = 0,
                                               const CancelCheck &isCanceled = {});

/// A version of a file and how its pixels become upright.
struct UprightVersion {
    QString path;
    std::optional<FileVersion> version;
    Uprighting uprighting;
};

/// A reduced upright picture for the screen. Waits for the budget only when picture and decoder take more
/// than 64 MB.
/// @return a failure, too, when the file has another version
[[nodiscard]] Result<QImage> readReducedVersion(const UprightVersion &photo, int minimumSide,
                                                const PhotoServices &services, const CancelCheck &isCanceled);

/// Turns the photo in the cache; one that is not there is turned when it is decoded.
/// @return false, with nothing changed, when there is no memory for that
bool turnCachedPhoto(PixelCache &cache, const PixelCache::Key &key, ImageTransform transform);

} // namespace plexa

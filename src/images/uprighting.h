// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/imagesource.h"
#include "platform/bytebudget.h"

#include <QSize>
#include <QTransform>

#include <optional>

namespace plexa
{

class ImageMetadata;

/// A turn or mirroring that the user gives to a photo.
enum class ImageTransform {
    RotateClockwise = 1,
    RotateCounterClockwise = 2,
    RotateHalf = 3,
    MirrorLeftRight = 4,
    MirrorTopBottom = 5,
};

/// The orientation (1..8, numbered as EXIF does) of a photo of that orientation after one more turn.
int orientationAfter(int orientation, ImageTransform transform);

/// The orientation that comes out of following `first` and then `second`.
int composedOrientation(int first, int second);

/// The orientation that undoes another one.
int inverseOrientation(int orientation);

/// How the stored pixels of a photo become the picture that people see: turned by its orientation and the
/// user's turns, its pixels made square.
struct Uprighting {
    QSize stored;        ///< pixels in the file
    int orientation = 1; ///< 1..8, the user's turns included
    double scaleX = 1;   ///< stretch along the stored x axis, >= 1
    double scaleY = 1;

    bool isStretched() const { return scaleX != 1 || scaleY != 1; }
    bool isIdentity() const { return orientation == 1 && !isStretched(); }

    /// Pixels of the upright picture.
    QSize size() const;

    /// Pixels of the upright picture if its pixels had not been made square.
    QSize unscaledSize() const;

    /// Where a stored pixel goes (origin at the bottom left, y upwards), for a stored picture that was
    /// decoded to `decoded` pixels.
    QTransform transform(QSize decoded) const;
};

/// @param metadata  of the file as read, for its orientation and resolutions
/// @param turns     the user's turns as an orientation
/// @param limits    a stretch that would go beyond them is left out
Uprighting uprightingOf(QSize stored, const ImageMetadata &metadata, int turns, const ReadLimits &limits);

/// The whole upright picture.
/// @param reducedTo  0 for the full size; else a side length (pixels) that the longer side need not exceed by
///                   much, which lets some formats decode faster
[[nodiscard]] Result<QImage> readUpright(const ImageSource &source, const Uprighting &uprighting,
                                         int reducedTo = 0);

/// The memory (bytes) of a decoded picture.
qint64 pictureBytes(QSize size);

/// The most memory (bytes) that readUpright() of the same arguments takes, its result included.
qint64 uprightBytes(const ImageSource &source, const Uprighting &uprighting, int reducedTo = 0);

/// Waits for the memory that the work on one photo will take; one call for all of it, because a thread that
/// holds a reservation must not wait for another.
/// @param size   pixels of the photo, for the failure's text
/// @param bytes  0: there is nothing to wait for
/// @return a failure, at once, when the photo can never have so much
[[nodiscard]] Result<ByteBudget::Reservation> reserveForPhoto(ByteBudget &budget, QSize size, qint64 bytes);

/// readUpright() within a budget: waits for the memory that it takes, and gives it back when the picture is
/// there. The calling thread must not hold a reservation.
[[nodiscard]] Result<QImage> readUprightWithin(ByteBudget &budget, const ImageSource &source,
                                               const Uprighting &uprighting, int reducedTo = 0);

} // namespace plexa

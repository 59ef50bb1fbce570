// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/codecs/codec.h"

namespace plexa
{

/// What the marker segments in front of a JPEG's picture data say.
struct JpegStructure {
    struct Component {
        int horizontal = 1; ///< sampling factors
        int vertical = 1;
    };

    QSize size;
    QList<Component> components;
    bool isProgressive = false;
    bool hasSeveralScans = false; ///< the first one does not give the whole picture
    double dpiWidth = 0;          ///< from JFIF; the bare aspect where it has no unit; 0 when it says nothing
    double dpiHeight = 0;
    QByteArray iccProfile;        ///< put together from its pieces, empty when one is missing; Adobe RGB of
                                  ///< our making where there is none and the EXIF names that space
    QVariantMap jfif;             ///< the dictionary "{JFIF}" without "IsProgressive"; empty: no JFIF
    QStringList unmarkedPictures; ///< see PictureInfo
};

/// Reads the segments up to the picture data, and those of further pictures that a multi-picture index
/// names. Decodes nothing, so damage behind the segments is not seen.
/// @param device  random access, at the start of the file
[[nodiscard]] Result<JpegStructure> readJpegStructure(QIODevice &device, const ReadLimits &limits);

/// The memory (bytes) that the coefficients of a picture take which is decoded from or encoded to several
/// scans: two bytes each, in blocks of 8 x 8 samples, each component's planes filled up to whole groups of
/// blocks as its sampling factors make them.
/// @param components  factors 1..4; others count as the nearest of these
qint64 coefficientBytes(QSize size, const QList<JpegStructure::Component> &components);

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/codecs/codec.h"

namespace plexa
{

/// The facts in the marker segments before a JPEG's picture data.
struct JpegStructure {
    struct Component {
        int horizontal = 1; ///< sampling factors
        int vertical = 1;
    };

    QSize size;
    QList<Component> components;
    bool isProgressive = false;
    bool hasSeveralScans = false;
    double dpiWidth = 0; ///< from JFIF; the bare aspect if it has no unit; 0: unknown
    double dpiHeight = 0;
    QByteArray iccProfile; ///< empty if a piece is missing; adobeRgbProfile() if only EXIF names that space
    QVariantMap jfif;      ///< the dictionary "{JFIF}" without "IsProgressive"; empty: no JFIF
    QStringList unmarkedPictures; ///< see PictureInfo
};

/// Reads the segments up to the picture data, and those of the pictures in a multi-picture index. Decodes
/// nothing.
/// @param device  random access, at the start of the file
[[nodiscard]] Result<JpegStructure> readJpegStructure(QIODevice &device, const ReadLimits &limits);

/// The memory (bytes) for the coefficients of a picture of several scans: two bytes each, in blocks of 8 x 8
/// samples and whole groups of blocks.
/// @param components  factors 1..4; others count as the nearest of these
qint64 coefficientBytes(QSize size, const QList<JpegStructure::Component> &components);

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/imageformat.h"

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
    double dpiWidth = 0; ///< from JFIF; the bare aspect where it has no unit; 0 when it says nothing
    double dpiHeight = 0;
    QByteArray iccProfile;        ///< put together from its pieces; empty when one is missing
    QStringList unmarkedPictures; ///< see PictureInfo
};

/// Reads the segments up to the picture data, and those of further pictures that a multi-picture index
/// names. Decodes nothing, so damage behind the segments is not seen.
/// @param device  random access, at the start of the file
[[nodiscard]] Result<JpegStructure> readJpegStructure(QIODevice &device, const ReadLimits &limits);

} // namespace plexa

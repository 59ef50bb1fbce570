// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArrayView>
#include <QIODevice>

namespace plexa
{

/// Whether a file starts like TIFF with 32-bit offsets, which most camera raw formats do as well.
/// @param head  the first bytes of the file
bool isClassicTiff(QByteArrayView head);

/// Facts about the pictures of a TIFF file from its directories.
struct TiffPictures {
    bool isTiff = false;
    bool hasFurtherPages = false;    ///< besides reduced pictures, masks and a sensor's samples
    bool isDng = false;              ///< by the first directory
    bool hasRawPicture = false;      ///< samples of a sensor
    bool beginsReduced = false;      ///< the first picture is a reduced one
    bool hasMake = false;            ///< a camera's or a scanner's
    bool hasInnerPictures = false;   ///< the first directory has sub-directories
    bool lacksInnerPictures = false; ///< ... of which some cannot be read
};

/// @param device  random access; left at any position
TiffPictures readTiffPictures(QIODevice &device);

} // namespace plexa

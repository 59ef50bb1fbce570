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

/// Does the EXIF specify Adobe RGB? Cameras write such photos without a profile: the color space is
/// "uncalibrated" and the interoperability directory names the rule R03 (DCF 2.0); some write the color
/// space 2.
/// @param tiff  the EXIF from its TIFF header on, or a whole TIFF file; may be damaged. A device is read by
///              random access and left at any position.
bool exifSaysAdobeRgb(QByteArrayView tiff);
bool exifSaysAdobeRgb(QIODevice &tiff);

} // namespace plexa

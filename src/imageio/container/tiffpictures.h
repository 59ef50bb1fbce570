// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArrayView>
#include <QIODevice>

namespace plexa
{

/// Whether a file starts like TIFF with 32-bit offsets, which most camera raw formats do as well.
/// @param head  the first bytes of the file
bool isClassicTiff(QByteArrayView head);

/// What the directories of a TIFF file say of the pictures in it.
struct TiffPictures {
    bool isTiff = false;
    int count = 0;                 ///< in the chain of directories, a large number of them not to the end
    bool hasFurtherPages = false;  ///< behind the first picture stand others that are no reduced ones of it,
                                   ///< no masks and no sensor's samples
    bool isDng = false;            ///< the first directory says so
    bool hasRawPicture = false;    ///< samples of a sensor
    bool beginsReduced = false;    ///< the first picture is a small one of another
    bool hasMake = false;          ///< a camera's or a scanner's
    bool hasInnerPictures = false; ///< directories inside of the first one
    bool lacksInnerPictures = false; ///< ... of which some cannot be read
};

/// @param device  random access; left at any position
TiffPictures readTiffPictures(QIODevice &device);

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArrayView>
#include <QIODevice>

namespace plexa
{

/// Does the EXIF specify Adobe RGB? Cameras write such photos without a profile: the color space is
/// "uncalibrated" and the interoperability directory names the rule R03 (DCF 2.0); some write the color
/// space 2.
/// @param tiff  the EXIF from its TIFF header on, or a whole TIFF file; may be damaged. A device is read by
///              random access and left at any position.
bool exifSaysAdobeRgb(QByteArrayView tiff);
bool exifSaysAdobeRgb(QIODevice &tiff);

} // namespace plexa

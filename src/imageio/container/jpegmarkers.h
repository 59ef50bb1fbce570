// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArrayView>

namespace plexa
{

/// Second bytes of a JPEG's markers (ITU-T T.81, table B.1).
namespace JpegMarker
{
enum : int {
    TEM = 0x01,
    SOF0 = 0xC0,
    DHT = 0xC4,
    JPG = 0xC8,
    DAC = 0xCC,
    SOF15 = 0xCF,
    RST0 = 0xD0,
    SOI = 0xD8,
    EOI = 0xD9,
    SOS = 0xDA,
    APP0 = 0xE0,
    APP1 = 0xE1,
    APP2 = 0xE2,
    APP13 = 0xED,
    SOF55 = 0xF7, // JPEG-LS
    COM = 0xFE,
};

/// Does the marker begin a frame header of T.81?
constexpr bool isFrame(int marker)
{
    return marker >= SOF0 && marker <= SOF15 && marker != DHT && marker != JPG && marker != DAC;
}
} // namespace JpegMarker

/// What the contents of an APPn segment begin with.
namespace JpegSegmentName
{
inline constexpr QByteArrayView kJfif("JFIF\0", 5);
inline constexpr QByteArrayView kExif("Exif\0\0", 6);
inline constexpr QByteArrayView kXmp("http://ns.adobe.com/xap/1.0/\0", 29);
inline constexpr QByteArrayView kMoreXmp("http://ns.adobe.com/xmp/extension/\0", 35);
inline constexpr QByteArrayView kImageResources("Photoshop 3.0\0", 14);
inline constexpr QByteArrayView kIcc("ICC_PROFILE\0", 12);
inline constexpr QByteArrayView kMultiPicture("MPF\0", 4);
inline constexpr QByteArrayView kIsoGainMap("urn:iso:std:iso:ts:21496:-1\0", 28);
} // namespace JpegSegmentName

/// The longest content of a marker segment: 16 bits of length, which count themselves.
inline constexpr qsizetype kMaxJpegSegmentPayload = 65533;

/// The longest EXIF structure that a JPEG can hold in one segment.
inline constexpr qsizetype kMaxJpegExif = kMaxJpegSegmentPayload - JpegSegmentName::kExif.size();

} // namespace plexa

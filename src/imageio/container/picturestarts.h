// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>

namespace plexa
{

/// Where the first JPEG or PNG in these bytes begins; -1 without one. A JPEG is a start, directly followed
/// by a marker, and a frame header anywhere after: a table of numbers may contain the first bytes of a JPEG
/// by chance. Its first byte may be any, or lie before the bytes: some cameras spoil it in their maker notes.
qsizetype pictureStartIn(QByteArrayView bytes);

inline bool holdsPictureStart(QByteArrayView bytes)
{
    return pictureStartIn(bytes) >= 0;
}

/// Does a text hold a JPEG or PNG in base 64 or in hexadecimal digits? The letters with which one begins may
/// occur in words by chance.
bool holdsPictureAsText(const QByteArray &text);

/// Is this value a picture: does a JPEG or PNG begin anywhere in it, or does it begin like a file of another
/// picture format (TIFF, GIF, WebP, HEIF, AVIF, JPEG XL, JPEG 2000, BMP)?
bool isPictureValue(const QByteArray &value);

} // namespace plexa

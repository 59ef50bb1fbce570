// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>

namespace plexa
{

/// Does a JPEG or PNG begin anywhere in these bytes?
bool holdsPictureStart(QByteArrayView bytes);

/// Is this value a picture: does a JPEG or PNG begin anywhere in it, or does it begin like a file of another
/// picture format (TIFF, GIF, WebP, HEIF, AVIF, JPEG XL, JPEG 2000, BMP)?
bool isPictureValue(const QByteArray &value);

} // namespace plexa

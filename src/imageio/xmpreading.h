// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/metadatafields.h"

#include <QVariant>

#include <exiv2/exiv2.hpp>

namespace plexa
{

/// The value that XMP has for a field; invalid when it has none or none that can be read.
QVariant xmpField(const Exiv2::XmpData &xmp, const MetadataField &field);

/// Adds what one XMP property says in place of two EXIF ones: reference letters, date and time of the fix.
/// Present values stay.
void insertGpsFromXmp(QVariantMap &gps, const Exiv2::XmpData &xmp);

} // namespace plexa

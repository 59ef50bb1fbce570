// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/embedded/metadataset.h"

#include <QVariantMap>

namespace plexa
{

/// The property dictionary of a file's metadata. A fact is read from EXIF or IIM; where these lack it,
/// from XMP; lens and serial number also from the maker notes.
/// @param xmp  decodedXmp() of the set
QVariantMap propertiesOfMetadata(const MetadataSet &set, const Exiv2::XmpData &xmp);

} // namespace plexa

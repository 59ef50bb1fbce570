// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/embedded/metadataset.h"

#include <QVariantMap>

namespace plexa
{

/// Applies the differences between two property dictionaries to EXIF, IPTC and XMP: a new value goes where
/// the fact belongs and to all further places that a file may have for it, a removed one leaves all of them.
/// @param before  propertiesOfMetadata() of the set
/// @return has the IPTC record changed?
bool applyPropertyChanges(MetadataSet &set, Exiv2::XmpData &xmp, const QVariantMap &before,
                          const QVariantMap &wanted);

} // namespace plexa

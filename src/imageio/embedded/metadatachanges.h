// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/embedded/metadataset.h"

#include <QVariantMap>

namespace plexa
{

/// Carries what differs between two property dictionaries into EXIF, IPTC and XMP: a new value goes where
/// the fact belongs and wherever else a file may say it, a removed one leaves all those places.
/// @param before  what the set says: propertiesOfMetadata()
/// @return has the IPTC record changed?
bool applyPropertyChanges(MetadataSet &set, Exiv2::XmpData &xmp, const QVariantMap &before,
                          const QVariantMap &wanted);

} // namespace plexa

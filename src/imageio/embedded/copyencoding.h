// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/embedded/embeddedmetadata.h"
#include "imageio/embedded/metadataset.h"

namespace plexa
{

/// The metadata of a copy: those of `set`, changed where `after` differs from `before`, upright, sRGB,
/// without any picture of the unmarked photo.
/// @param before  propertiesOfMetadata() of the set
EmbeddedMetadata::Encoded encodedForCopy(MetadataSet set, const QVariantMap &before, const QVariantMap &after,
                                         const EmbeddedMetadata::CopyFacts &facts);

} // namespace plexa

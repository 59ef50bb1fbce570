// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QLatin1StringView>

#include <span>

namespace plexa
{

class ImageMetadata;

/// What people clear by one command.
enum class MetadataClearing {
    All,
    AllButCopyright,
    AllButCopyrightAndContact, ///< keeps also creator, creator's title and contact
    Gps,
    Iptc,
    Exif, ///< EXIF and TIFF
};

struct MetadataClearingRow {
    MetadataClearing clearing;
    QLatin1StringView name; ///< of the command line: "all-but-copyright"
};

/// All clearings, in the order of the enumeration.
std::span<const MetadataClearingRow> metadataClearings();

void clearMetadata(ImageMetadata &metadata, MetadataClearing clearing);

} // namespace plexa

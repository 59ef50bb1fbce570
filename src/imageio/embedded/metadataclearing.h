// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/embedded/metadataset.h"
#include "imageio/embedded/xmp/decodedxmp.h"
#include "metadata/clearedgroups.h"

#include <QVariantMap>

#include <algorithm>
#include <iterator>
#include <string_view>
#include <type_traits>

namespace plexa
{

/// Removes all entries of an EXIF, IPTC or XMP container for which the predicate holds.
/// @return true where there was any
template<class Container, class Predicate>
bool eraseMetadataIf(Container &container, Predicate predicate)
{
    using Category = typename std::iterator_traits<decltype(container.begin())>::iterator_category;
    if constexpr (std::is_base_of_v<std::random_access_iterator_tag, Category>) {
        // Erasing one by one moves all that follows each time.
        const auto kept = std::remove_if(container.begin(), container.end(), predicate) - container.begin();
        const bool hasErased = container.end() - container.begin() > kept;
        while (container.end() - container.begin() > kept)
            container.erase(std::prev(container.end()));
        return hasErased;
    } else {
        bool hasErased = false;
        for (auto entry = container.begin(); entry != container.end();) {
            const bool isMeant = predicate(*entry);
            entry = isMeant ? container.erase(entry) : std::next(entry);
            hasErased = hasErased || isMeant;
        }
        return hasErased;
    }
}

bool startsWithAny(std::string_view text, std::initializer_list<std::string_view> beginnings);

/// Removes the fields of these names.
void eraseExifFields(Exiv2::ExifData &exif, std::initializer_list<std::string_view> keys);

/// Removes an XMP property and what is nested in it. @return true where there was any
bool eraseXmpProperty(Exiv2::XmpData &xmp, std::string_view key);

/// Clears groups in all places that store something of them, modelled or not: EXIF with maker notes, serial
/// numbers and XMP mirrors; GPS, in maker notes as well; IPTC with its XMP mirrors; of TIFF what describes
/// picture and camera. What `after` still has of IPTC and TIFF stays.
void clearGroups(MetadataSet &set, DecodedXmp &xmp, ClearedGroups groups, const QVariantMap &after);

/// Is this the name of a maker-note group of the library ("Canon", "Nikon3", ...)?
bool isMakerNoteGroup(const std::string &groupName);

/// The number of fields that the library has decoded from the maker notes.
size_t makerNoteFields(const Exiv2::ExifData &exif);

/// Removes the maker notes, decoded or not.
void eraseMakerNotes(Exiv2::ExifData &exif);

/// Removes a maker note that the library cannot decode: it may contain anything.
void eraseOpaqueMakerNote(Exiv2::ExifData &exif);

} // namespace plexa

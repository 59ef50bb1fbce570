// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/metadataset.h"

#include <QVariantMap>

#include <algorithm>
#include <iterator>
#include <string_view>
#include <type_traits>

namespace plexa
{

/// Removes all entries of an EXIF, IPTC or XMP container for which the predicate holds.
template<class Container, class Predicate>
void eraseMetadataIf(Container &container, Predicate predicate)
{
    using Category = typename std::iterator_traits<decltype(container.begin())>::iterator_category;
    if constexpr (std::is_base_of_v<std::random_access_iterator_tag, Category>) {
        // Erasing one by one moves all that follows each time.
        const auto kept = std::remove_if(container.begin(), container.end(), predicate) - container.begin();
        while (container.end() - container.begin() > kept)
            container.erase(std::prev(container.end()));
    } else {
        for (auto entry = container.begin(); entry != container.end();)
            entry = predicate(*entry) ? container.erase(entry) : std::next(entry);
    }
}

/// Removes an XMP property and what is nested in it. @return was there any?
bool eraseXmpProperty(Exiv2::XmpData &xmp, std::string_view key);

/// Is the IPTC group of `after` emptied but for what a clearing may keep (copyright, creator, contact)?
bool isIptcCleared(const QVariantMap &before, const QVariantMap &after);

/// Clears the groups that are empty in `after` but not in `before`, in all places that store something of
/// them, modelled or not: EXIF with maker notes, serial numbers and XMP mirrors; GPS; IPTC with its XMP
/// mirrors but for what `after` keeps (copyright, creator, contact).
/// To be called under lockXmpNamespaces().
void clearEmptiedGroups(MetadataSet &set, Exiv2::XmpData &xmp, const QVariantMap &before,
                        const QVariantMap &after);

/// Is this the name of a maker-note group of the library ("Canon", "Nikon3", ...)?
bool isMakerNoteGroup(const std::string &groupName);

/// Removes the maker notes, decoded or not.
void eraseMakerNotes(Exiv2::ExifData &exif);

} // namespace plexa

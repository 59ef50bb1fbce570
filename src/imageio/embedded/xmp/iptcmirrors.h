// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QLatin1StringView>
#include <QStringList>

#include <exiv2/exiv2.hpp>

#include <span>

namespace plexa
{

// Structures and lists of XMP that repeat IPTC facts beside the facts' own properties.

/// Adapts the keyword lists of photo managers to edited keywords. Of the trees ("Places|Berlin",
/// "Places/Berlin") the entries stay whose last name is still a keyword and that name no removed one; lists
/// of unknown form are removed.
void updateKeywordLists(Exiv2::XmpData &xmp, const QStringList &before, const QStringList &after);

/// A part of IPTC Extension's "location created" that the IPTC dictionary has as a field of its own.
struct LocationPart {
    const char *name;      ///< "City"
    QLatin1StringView key; ///< of the IPTC dictionary
};

std::span<const LocationPart> locationParts();

/// Sets the part of the location created for the dictionary's key wherever XMP has it; an empty text removes
/// it. Other keys change nothing.
void updateLocationCreated(Exiv2::XmpData &xmp, QLatin1StringView key, const QString &text);

} // namespace plexa

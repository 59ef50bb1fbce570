// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QLatin1StringView>
#include <QString>

#include <exiv2/exiv2.hpp>

#include <span>

namespace plexa
{

/// A part of IPTC Extension's "location created" that the IPTC dictionary has as a field of its own.
struct LocationPart {
    const char *name;      ///< "City"
    QLatin1StringView key; ///< of the IPTC dictionary
};

std::span<const LocationPart> locationParts();

/// Gives the location created a new value for the dictionary's key wherever it has one; an empty text takes
/// it away. Other keys change nothing.
void updateLocationCreated(Exiv2::XmpData &xmp, QLatin1StringView key, const QString &text);

} // namespace plexa

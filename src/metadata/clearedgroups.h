// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QFlags>

namespace plexa
{

/// A dictionary of the property dictionary that the user has cleared. A file may store facts of it that the
/// dictionary does not model, so that an empty dictionary alone is no proof of a clearing.
enum class ClearedGroup {
    Tiff = 1, ///< description, camera, software and, unless they are still there, copyright and artist
    Exif = 2, ///< EXIF and EXIF auxiliary
    Gps = 4,
    Iptc = 8,
};
Q_DECLARE_FLAGS(ClearedGroups, ClearedGroup)
Q_DECLARE_OPERATORS_FOR_FLAGS(ClearedGroups)

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QVariantMap>

#include <exiv2/exiv2.hpp>

namespace plexa
{

/// Adds what the maker notes know of lens, serial numbers, owner, firmware and image number to the dictionary
/// "{ExifAux}". Present values stay.
///
/// The image number is the shutter's count where the camera records it (Nikon), else the number of the file
/// as the camera counts (Canon: folder and file in one, 1131326 for 113-1326). The lens ID is the number by
/// which Canon, Minolta and Sony name a lens; other makers need more than one number.
void insertMakerNoteFacts(QVariantMap &aux, const Exiv2::ExifData &exif);

/// Removes a fact of the dictionary "{ExifAux}" from the maker notes: the fields that insertMakerNoteFacts()
/// asks for it, with a lens model all that names or measures the lens, with a serial number all numbers of
/// the camera, or the whole note where the library understood nothing of it.
/// @param key  of the fact; of another dictionary: nothing is removed
void eraseFactFromMakerNotes(Exiv2::ExifData &exif, QLatin1StringView key);

} // namespace plexa

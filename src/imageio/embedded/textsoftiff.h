// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QVariantMap>

namespace plexa
{

/// The properties with creator, copyright notice and caption of EXIF (the TIFF dictionary) in the IPTC
/// dictionary too, where that has none.
QVariantMap withTextsOfTiff(QVariantMap properties);

/// What a copy stores of `properties`: without those texts in the IPTC dictionary that withTextsOfTiff() has
/// added to the properties of the file, as long as the TIFF dictionary still has them. A copy thus gains no
/// IPTC record by reading.
/// @param ofFile  without the added texts
QVariantMap withoutTextsOfTiff(QVariantMap properties, const QVariantMap &ofFile);

} // namespace plexa

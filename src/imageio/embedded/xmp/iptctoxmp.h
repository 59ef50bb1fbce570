// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QStringList>
#include <QVariantMap>

#include <exiv2/exiv2.hpp>

namespace plexa
{

/// Puts the facts of the IPTC dictionary into XMP, for a file that has no place for IIM records. Each fact
/// goes to its home of IPTC Core ("IIM to XMP mapping", IPTC Photo Metadata Standard); facts that have none
/// are left out. A text in XMP that IIM has only the beginning of stays whole.
/// @param properties  the property dictionary of the copy
void addIptcToXmp(Exiv2::XmpData &xmp, const QVariantMap &properties);

/// The names of the datasets that addIptcToXmp() leaves out because XMP has no place for them, for the user.
QStringList iptcWithoutPlaceInXmp(const Exiv2::IptcData &iptc);

/// Puts author, copyright, description and software of the TIFF dictionary into XMP, for a file that has no
/// place for EXIF. They go to XMP's own names for TIFF, which a clearing of IPTC leaves. Present values stay.
void addTiffTextsToXmp(Exiv2::XmpData &xmp, const QVariantMap &properties);

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QStringList>

#include <exiv2/exiv2.hpp>

namespace plexa
{

/// XMP as a packet in UTF-8. Where the library refuses it, the properties that it refuses are left out with
/// all that is nested in them. Nothing is thrown. To be called under lockXmpNamespaces().
/// @param omitted  gets the names of what was left out: "XMP" for all of it, "XMP dc:title" for a property
/// @return empty where nothing is left
QByteArray encodedXmp(const Exiv2::XmpData &xmp, QStringList &omitted);

} // namespace plexa

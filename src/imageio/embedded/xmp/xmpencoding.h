// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/embedded/xmp/xmpdecoding.h"

namespace plexa
{

/// XMP as a packet in UTF-8, with the file's own prefixes. Properties that the library refuses are left out
/// with all that is nested in them. Throws nothing.
/// @param omitted  gets the names of what is left out: "XMP" for all of it, "XMP dc:title" for a property
/// @return empty where nothing is left
QByteArray encodedXmp(const DecodedXmp &xmp, QStringList &omitted);

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/embedded/xmp/xmpnamespaces.h"

#include <QStringList>

#include <exiv2/exiv2.hpp>

namespace plexa
{

struct MetadataSet;

/// A file's XMP: its properties, under the prefixes that the library has for all files, and the file's own
/// names for those prefixes.
struct DecodedXmp {
    Exiv2::XmpData data;
    XmpNamespaces namespaces;
};

/// Decodes the XMP of a set, both packets as one; of a property in both, the main packet's is kept. Bytes
/// that are not UTF-8 and a bare "&" are repaired. A packet that the library refuses all the same, or that
/// exceeds the limits (size, nesting, number of elements and attributes), is left out.
/// @param omitted  gets "XMP" where a packet is left out
DecodedXmp decodedXmp(const MetadataSet &set, QStringList *omitted = nullptr);

/// XMP as a packet in UTF-8, with the file's own prefixes. Properties that the library refuses are left out
/// with all that is nested in them. Throws nothing.
/// @param omitted  gets the names of what is left out: "XMP" for all of it, "XMP dc:title" for a property
/// @return empty where nothing is left
QByteArray encodedXmp(const DecodedXmp &xmp, QStringList &omitted);

} // namespace plexa

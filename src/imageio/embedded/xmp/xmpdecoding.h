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
/// that are no UTF-8 and a bare "&" are repaired. A packet that the library refuses all the same, or that
/// exceeds the limits (size, nesting, number of elements and attributes), is left out.
/// @param omitted  gets "XMP" where a packet is left out
DecodedXmp decodedXmp(const MetadataSet &set, QStringList *omitted = nullptr);

} // namespace plexa

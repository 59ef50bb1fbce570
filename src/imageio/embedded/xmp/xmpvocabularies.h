// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/embedded/xmp/xmpnamespaces.h"

#include <exiv2/exiv2.hpp>

namespace plexa
{

/// What a property is about in vocabularies of XMP beside the standard ones of EXIF and IPTC.
enum class XmpTopic {
    Description, ///< people, keywords, captions and rights, for photo managers, agencies and publishers
    Rights,      ///< to use the photo: they stay with a copyright that is kept
    Exposure,    ///< lens, camera profile and time, for raw converters, panoramas and films
    Camera,      ///< its names
    CellTower,   ///< recorded by a phone
};

/// Does the property belong to the topic? The address of its vocabulary decides: a file may use any prefix.
bool isAbout(XmpTopic topic, const Exiv2::Xmpdatum &datum, const XmpNamespaces &namespaces);

} // namespace plexa

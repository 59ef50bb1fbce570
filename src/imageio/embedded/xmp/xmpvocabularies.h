// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/embedded/xmp/xmpnamespaces.h"

#include <exiv2/exiv2.hpp>

namespace plexa
{

// Vocabularies of XMP, beside the standard ones of EXIF and IPTC, with facts that a clearing removes. Their
// addresses identify them: a file may use any prefix.

/// People, keywords, captions and rights in vocabularies of regions, photo managers, agencies and publishers.
bool isDescriptionInXmp(const Exiv2::Xmpdatum &datum, const XmpNamespaces &namespaces);

/// Rights to use the photo, which stay with a copyright that is kept.
bool isRightInXmp(const Exiv2::Xmpdatum &datum, const XmpNamespaces &namespaces);

/// Lens, camera profile and time in vocabularies of raw converters, panoramas and films.
bool isExposureInXmp(const Exiv2::Xmpdatum &datum, const XmpNamespaces &namespaces);

/// The cell towers that a phone recorded.
bool isCellTowerInXmp(const Exiv2::Xmpdatum &datum, const XmpNamespaces &namespaces);

/// Names of the camera outside of EXIF's own vocabulary.
bool isCameraInXmp(const Exiv2::Xmpdatum &datum, const XmpNamespaces &namespaces);

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <exiv2/exiv2.hpp>

namespace plexa
{

// Which vocabularies of XMP, beside the standard ones of EXIF and IPTC, say what a clearing is to remove.
// They are told by their namespace: a file may give them any prefix. All are to be called under
// lockXmpNamespaces().

/// People, keywords, captions and rights in vocabularies of regions, photo managers, agencies and publishers.
bool isDescriptionInXmp(const Exiv2::Xmpdatum &datum);

/// Who may use the photo and how: what stays with a copyright that is kept.
bool isRightInXmp(const Exiv2::Xmpdatum &datum);

/// Lens, camera profile and time in vocabularies of raw converters, panoramas and films.
bool isExposureInXmp(const Exiv2::Xmpdatum &datum);

/// What a phone's radio knew of where it was.
bool isCellTowerInXmp(const Exiv2::Xmpdatum &datum);

/// Names of the camera outside of EXIF's own vocabulary.
bool isCameraInXmp(const Exiv2::Xmpdatum &datum);

} // namespace plexa

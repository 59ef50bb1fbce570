// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/keyedarchive.h"
#include "watermark/watermarkpicture.h"

namespace plexa
{

/// The archived form of a picture that was not read from an archive: its pixels as a TIFF file, with alpha if
/// they have it; for an SVG drawing also the drawing, the pixels being for programs without SVG.
[[nodiscard]] Result<ArchivedImage> archivedImage(const WatermarkPicture &picture);

} // namespace plexa

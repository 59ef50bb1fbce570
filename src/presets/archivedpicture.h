// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/keyedarchive.h"
#include "watermark/watermarkpicture.h"

namespace plexa
{

/// A picture that comes from no archive as it is archived: pixels as a TIFF file, with alpha where they have
/// it; a drawing with pixels beside it for programs that know no drawings.
[[nodiscard]] Result<ArchivedImage> archivedImage(const WatermarkPicture &picture);

} // namespace plexa

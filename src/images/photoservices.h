// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/imageformat.h"
#include "images/pixelcache.h"
#include "platform/bytebudget.h"
#include "platform/fontcatalog.h"
#include "platform/localeformat.h"

namespace plexa
{

/// What photos share with each other. Made once by the program, before the first photo, and kept until after
/// the last.
struct PhotoServices {
    const FontCatalog &fonts;
    const LocaleFormat &locale;
    PixelCache &cache;
    ByteBudget &budget; ///< for pictures that are decoded whole
    ReadLimits limits;
};

} // namespace plexa

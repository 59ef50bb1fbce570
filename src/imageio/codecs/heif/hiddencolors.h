// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"

#include <QImage>

namespace plexa
{

/// Gives the fully transparent pixels smooth colors of their neighborhood; their alpha stays 0. A lossy
/// encoder mixes colors across the edge of the visible pixels, and some viewers ignore alpha. Without visible
/// pixels nothing changes. Needs a third of the picture's bytes as memory, and fails without it.
/// @param image  Format_RGBA8888, not premultiplied
[[nodiscard]] Result<void> fillHiddenColors(QImage &image);

} // namespace plexa

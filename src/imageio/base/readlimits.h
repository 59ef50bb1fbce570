// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtGlobal>

namespace plexa
{

/// Bounds for pictures from outside.
struct ReadLimits {
    qint64 maxPixels = 1'000'000'000; ///< a picture with more is refused
    qint64 maxBytes = 4'000'000'000;  ///< memory that one decoded picture may take
};

} // namespace plexa

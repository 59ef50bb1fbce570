// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QSize>

namespace plexa
{

/// How the pixels of a copy lie against those of its source.
struct PictureTurn {
    QSize stored;        ///< pixels of the source; empty: not known, nothing has been turned
    int orientation = 1; ///< 1..8 as EXIF numbers it, with the user's turns; applied after the stretch
    double scaleX = 1;   ///< stretch along the stored x axis
    double scaleY = 1;

    bool isIdentity() const { return stored.isEmpty() || (orientation == 1 && scaleX == 1 && scaleY == 1); }
};

} // namespace plexa

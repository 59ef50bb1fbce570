// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

class QPainter;
class QRect;

namespace plexa
{

/// The checks behind transparent pictures and colors: grays on which both white and black are visible.
/// @param side  of a check, in the units of the painter
void drawCheckedGround(QPainter &painter, const QRect &rect, int side);

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/widgets/checkedground.h"

#include <QPainter>

namespace plexa
{

void drawCheckedGround(QPainter &painter, const QRect &rect, int side)
{
    painter.fillRect(rect, QColor(0xbf, 0xbf, 0xbf));
    for (int y = 0; y * side < rect.height(); ++y) {
        for (int x = y % 2; x * side < rect.width(); x += 2) {
            const QRect check(rect.topLeft() + QPoint(x, y) * side, QSize(side, side));
            painter.fillRect(check.intersected(rect), QColor(0xa3, 0xa3, 0xa3));
        }
    }
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/screenmarks.h"

#include <algorithm>

namespace plexa
{

ScreenMarks::Drawn ScreenMarks::draw(QImage &picture, QPoint at, QSize layer, const PhotoFacts &photo,
                                     const std::vector<MarkOrder> &orders, const CancelCheck &isCanceled)
{
    if (m_photo != photo.pixelSize() || m_layer != layer)
        clear();
    m_photo = photo.pixelSize();
    m_layer = layer;
    m_marks.resize(std::min(m_marks.size(), orders.size()));
    Drawn drawn;
    for (std::size_t i = 0; i < orders.size(); ++i) {
        prepare(i, orders[i], photo, isCanceled);
        const Result<std::optional<WatermarkDrawing>> &drawing = m_marks[i].drawing;
        if (!drawing) {
            drawn.messages.append(drawing.error().text);
        } else if (*drawing) {
            if (!picture.isNull())
                (*drawing)->drawRows(picture, at.y(), at.x());
            drawn.messages.append((*drawing)->notices());
            if (i == 0)
                drawn.firstRect = (*drawing)->layout().rect;
        }
    }
    return drawn;
}

/// Makes m_marks[index] the watermark of that order, by moving it where that is enough.
void ScreenMarks::prepare(std::size_t index, const MarkOrder &order, const PhotoFacts &photo,
                          const CancelCheck &isCanceled)
{
    if (index < m_marks.size() && m_marks[index].order.values == order.values && m_marks[index].drawing) {
        Mark &mark = m_marks[index];
        if (mark.order.customOrigin == order.customOrigin)
            return;
        if (order.customOrigin && *mark.drawing) {
            mark.drawing = std::optional((*mark.drawing)->movedTo(*order.customOrigin));
            mark.order.customOrigin = order.customOrigin;
            return;
        }
    }
    m_marks.erase(m_marks.begin() + std::ptrdiff_t(std::min(index, m_marks.size())), m_marks.end());
    // The longer side: the sides of the layer are rounded.
    const double scale = std::min(1.0, double(std::max(m_layer.width(), m_layer.height())) /
                                           std::max(m_photo.width(), m_photo.height()));
    m_marks.push_back({order, WatermarkDrawing::prepare(order, photo, m_fonts, {scale, isCanceled})});
}

} // namespace plexa

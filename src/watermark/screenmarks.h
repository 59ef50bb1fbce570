// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "watermark/texttokens.h"
#include "watermark/watermarkdrawing.h"

#include <QRectF>
#include <QStringList>

namespace plexa
{

/// The watermarks of one photo on a picture of it that is reduced for the screen. Keeps them prepared: what
/// has not changed is not prepared again, what was moved is not rendered again. One thread at a time.
class ScreenMarks final
{
public:
    struct Drawn {
        std::optional<QRectF> firstRect; ///< of the first order; photo pixels, origin at the bottom left
        QStringList messages;            ///< why a watermark could not be drawn, and notices
    };

    /// @param fonts  outlives this object
    explicit ScreenMarks(const FontCatalog &fonts)
        : m_fonts(fonts)
    {
    }

    /// For another photo, or when its texts have changed.
    void clear() { m_marks.clear(); }

    /// Draws the watermarks one upon the other.
    /// @param picture  a part of the photo scaled to `layer`; null: nothing is drawn, but all is laid out
    /// @param at       the corner of that part, top left
    /// @param layer    at most as large as the photo
    Drawn draw(QImage &picture, QPoint at, QSize layer, const PhotoFacts &photo,
               const std::vector<MarkOrder> &orders, const CancelCheck &isCanceled);

private:
    struct Mark {
        MarkOrder order;
        Result<std::optional<WatermarkDrawing>> drawing;
    };

    void prepare(std::size_t index, const MarkOrder &order, const PhotoFacts &photo,
                 const CancelCheck &isCanceled);

    const FontCatalog &m_fonts;
    QSize m_photo; // for which they are prepared
    QSize m_layer;
    std::vector<Mark> m_marks;
};

} // namespace plexa

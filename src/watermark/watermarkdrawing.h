// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"
#include "raster/compositing.h"
#include "watermark/watermarklayout.h"

#include <optional>
#include <vector>

namespace plexa
{

class FontCatalog;
class PhotoFacts;
struct WPresetValues;

/// A watermark that is ready to be drawn on one photo, whole or strip by strip. Immutable; any number of
/// threads may draw different strips.
class WatermarkDrawing final
{
public:
    /// Makes the watermark bitmap, turns it and lays it out.
    /// @param customOrigin  a place chosen by hand (photo pixels, origin bottom left), or none
    /// @return no value when the preset yields no watermark for this photo (no text, no picture); a failure
    ///         when no bitmap can be made
    [[nodiscard]] static Result<std::optional<WatermarkDrawing>> prepare(const WPresetValues &values,
                                                                         const PhotoFacts &photo,
                                                                         const FontCatalog &fonts,
                                                                         std::optional<QPointF> customOrigin);

    /// The layout, in photo pixels with the origin at the bottom left.
    const WatermarkLayout &layout() const { return m_layout; }

    /// Does anything of it reach into the photo? A text of blanks, opacity 0 and a place outside do not.
    bool isVisible() const { return m_isVisible; }

    /// Draws onto the photo's rows `firstRow <= y < firstRow + rows.height()` (y from the top). Formats as in
    /// raster/compositing.h. Touches only what the watermark covers.
    void drawRows(QImage &rows, int firstRow) const;

private:
    WatermarkDrawing() = default;

    void placeBox(const WPresetValues &values, QSize photo);
    [[nodiscard]] Result<void> castShadow(const WPresetValues &values, QSize photo);
    void placeStamps(QSize photo, QPoint inkAt);

    struct Box {
        QRectF rect; ///< origin top left
        QColor color;
    };

    struct Stamp {
        QPoint topLeft; ///< of the mark, origin top left
    };

    WatermarkLayout m_layout;
    std::optional<Box> m_box;
    QImage m_mark; ///< the part of the bitmap with something in it
    Shadow m_shadow;
    QPoint m_shadowOffset; ///< from the mark's to the shadow's top left corner, y downwards
    BlendMode m_mode = BlendMode::Normal;
    double m_opacity = 1;
    bool m_isVisible = false;
    std::vector<Stamp> m_stamps; ///< those that reach into the photo
};

/// The photo with the watermark on it.
/// @param image          the photo's pixels, format as in raster/compositing.h; brought to `photo`'s size
///                       where it has another one
/// @param useCustomRect  `rect` brings the origin to use (photo pixels, bottom left)
/// @param rect           may be null; receives the origin that was used and the bitmap's size
/// @return `image` itself (the same pixels, not a copy) when the preset yields no watermark for this photo;
///         a failure when no bitmap can be made
[[nodiscard]] Result<QImage> createWatermarkOnImage(const QImage &image, const WPresetValues &values,
                                                    const PhotoFacts &photo, const FontCatalog &fonts,
                                                    bool useCustomRect, QRectF *rect);

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/cancelcheck.h"
#include "platform/result.h"
#include "raster/compositing.h"
#include "watermark/finemark.h"
#include "watermark/watermarklayout.h"
#include "watermark/wpresetvalues.h"

#include <optional>
#include <span>
#include <vector>

namespace plexa
{

class FontCatalog;
class PhotoFacts;

/// A preset to be drawn on one photo.
struct MarkOrder {
    WPresetValues values;
    std::optional<QPointF> customOrigin = {}; ///< place chosen by hand: photo pixels, origin bottom left
};

struct DrawingOptions {
    double scale = 1;            ///< pixels of the target for each photo pixel, in (0, 1]
    CancelCheck isCanceled = {}; ///< checked at each tile of a text, each row of a logo or a shadow
};

/// A watermark that is ready to be drawn on one photo, whole or strip by strip. Everything is measured at the
/// photo's full size; a reduced picture of the photo gets the same watermark, rendered at its scale.
/// Immutable; any number of threads may draw different strips.
class WatermarkDrawing final
{
public:
    /// The watermark of one copy. Corners are at the top left, y downwards.
    struct Mark {
        FineMark image;      ///< null if the watermark is transparent
        QPointF at;          ///< from the corner of the watermark's rectangle, in pixels of the fine image
        Shadow shadow = {};  ///< its image is null without a shadow
        QPoint shadowOffset; ///< from the image's to the shadow image's corner, in pixels of the target
        BlendMode mode = BlendMode::Normal; ///< of shadow and image
        double opacity = 1;                 ///< of shadow and image, 0..1
    };

    /// Pixels of the target, origin at its top left. Blended normally, below all copies.
    struct Box {
        QRectF rect;
        QColor color;
    };

    /// Renders the mark, rotates it and lays it out.
    /// @return none if the preset has no watermark for this photo (no text, no picture)
    [[nodiscard]] static Result<std::optional<WatermarkDrawing>> prepare(const MarkOrder &order,
                                                                         const PhotoFacts &photo,
                                                                         const FontCatalog &fonts,
                                                                         const DrawingOptions &options = {});

    /// Prepares several presets. @return the result of each, in their order
    [[nodiscard]] static std::vector<Result<std::optional<WatermarkDrawing>>>
    prepareEach(std::span<const MarkOrder> orders, const PhotoFacts &photo, const FontCatalog &fonts,
                const DrawingOptions &options = {});

    /// The same mark at another place; it is not rendered again.
    /// @param origin  of the watermark's rectangle: photo pixels, origin at the bottom left
    WatermarkDrawing movedTo(QPointF origin) const;

    /// The layout, in photo pixels with the origin at the bottom left, whatever the scale.
    const WatermarkLayout &layout() const { return m_layout; }

    const Mark &mark() const { return m_mark; }
    const std::optional<Box> &box() const { return m_box; }

    /// What the user should know about the mark on this photo, as texts that follow the photo's path.
    QStringList notices() const;

    /// False for a text of blanks, for opacity 0, for a place outside the photo and for a mark that is left
    /// out.
    bool isVisible() const { return !m_size.isEmpty() && !coveredRect().isEmpty(); }

    /// The pixels of the target that drawing may change, origin at its top left; empty: none.
    QRect coveredRect() const;

    /// Draws onto the target's rows `firstRow <= y < firstRow + rows.height()` (y from the top), inside
    /// coveredRect(). Formats as in raster/compositing.h.
    /// @param rows         of the photo, or of its picture reduced by the scale
    /// @param firstColumn  of the target that `rows` begins with; `rows` may end before the target does
    void drawRows(QImage &rows, int firstRow, int firstColumn = 0) const;

private:
    WatermarkDrawing() = default;

    /// The half-open ranges of the copies that reach into a part of the target.
    struct Stamps {
        qint64 firstColumn = 0;
        qint64 endColumn = 0;
        qint64 firstRow = 0;
        qint64 endRow = 0;
        bool isEmpty() const { return firstColumn >= endColumn || firstRow >= endRow; }
    };

    void castShadow(const CancelCheck &isCanceled);
    void layOut(std::optional<QPointF> customOrigin);
    void placeBox();
    /// What a copy covers, its image and its shadow, relative to pixelAt() of its corner.
    QRect reach() const;
    QPoint pixelOf(qint64 column, qint64 row) const { return m_mark.image.pixelAt(stampAt(column, row)); }
    /// The top left corner of a copy's image, in fine pixels.
    QPoint stampAt(qint64 column, qint64 row) const;
    Stamps stampsIn(const QRect &part) const;
    QRectF target() const { return {QPointF(0, 0), QSizeF(m_photo) * m_scale}; }

    WPresetValues m_values;
    QSize m_photo;
    double m_scale = 1;
    int m_finer = 1; ///< pixels of the rendered mark along the side of a target's pixel
    QSize m_size;    ///< of the rotated bitmap, in photo pixels
    WatermarkLayout m_layout;
    std::optional<Box> m_box;
    Mark m_mark;
    QStringList m_notices;
};

/// The photo with the watermark on it.
/// @param image          the photo's pixels, format as in raster/compositing.h; scaled to `photo`'s size
/// @param useCustomRect  `rect` holds the origin to use (photo pixels, bottom left)
/// @param rect           may be null; receives the used origin and the bitmap's size
/// @return `image` itself (the same pixels, not a copy) if the preset has no watermark for this photo
[[nodiscard]] Result<QImage> createWatermarkOnImage(const QImage &image, const WPresetValues &values,
                                                    const PhotoFacts &photo, const FontCatalog &fonts,
                                                    bool useCustomRect, QRectF *rect);

} // namespace plexa

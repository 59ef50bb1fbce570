// SPDX-License-Identifier: GPL-3.0-or-later

#include "images/photosnapshot.h"

#include "watermark/watermarkdrawing.h"

namespace plexa
{

Result<QImage> PhotoSnapshot::drawn(const QImage &image, const AppliedPreset &preset,
                                    const FontCatalog &fonts, QRectF *rect) const
{
    const std::optional<QPointF> custom = customOrigins.originFor(preset.preset.get());
    QRectF place(custom.value_or(QPointF()), QSizeF());
    Result<QImage> marked =
        createWatermarkOnImage(image, preset.values, facts, fonts, custom.has_value(), &place);
    if (marked && rect && marked->constBits() != image.constBits())
        *rect = place;
    return marked;
}

} // namespace plexa

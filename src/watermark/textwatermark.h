// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "watermark/watermarkbitmap.h"

#include <QString>

#include <optional>

namespace plexa
{

class FontCatalog;
struct WPresetValues;

/// The widest outline, in percent of the font size: nothing of a letter's shape is left. Wider ones are drawn
/// like it, because their cost grows with their width.
inline constexpr int kWidestStroke = 300;

/// The bitmap of a text watermark before rotation and tilt: as wide as the frame and as tall as the text,
/// both cut to whole photo pixels. Its ink may reach beyond. Any thread.
/// @param width  of the frame, in pixels of the photo
/// @return none without width or height; a failure if it would be too large
[[nodiscard]] Result<std::optional<WatermarkBitmap>>
createTextWatermarkOfWidth(double width, const WPresetValues &values, const QString &text,
                           const FontCatalog &fonts, const Rendering &rendering);

/// The font size in pixels of the photo. A percentage makes a line of text that many percent of the base
/// length tall.
/// @param lineHeight  in ems
double fontSizeInPixels(const WPresetValues &values, QSize photo, double lineHeight);

} // namespace plexa

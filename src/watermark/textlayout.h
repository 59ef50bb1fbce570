// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"

#include <QGlyphRun>
#include <QPainterPath>
#include <QRectF>
#include <QString>

#include <vector>

namespace plexa
{

class FontCatalog;

/// How lines of a text stand in their frame.
enum class TextAlignment { Left, Centre, Right };

/// A text set in a frame, as outlines. Lengths are in ems (1: the font size), origin at the frame's top left,
/// y downwards, so that one setting serves every size. Belongs to the thread that made it.
struct TextSetting {
    std::vector<QPainterPath> outlines; ///< a glyph each, non-zero winding
    /// Glyphs without outlines (colour emoji), one each, in thousandths of an em.
    std::vector<QGlyphRun> pictureGlyphs;
    QRectF pictureReach; ///< which those stay within
    double height = 0;   ///< that the frame needs
};

/// Lines may break where words end, and inside of words that are wider than the frame; "\n" and its like
/// always break. Characters that the font lacks come from the fonts that the system puts in its place.
/// Any thread.
/// @param fontName    PostScript name; the default font stands in for one that is not installed
/// @param widthInEms  of the frame, > 0
[[nodiscard]] Result<TextSetting> setText(const QString &text, const FontCatalog &fonts,
                                          const QString &fontName, TextAlignment alignment,
                                          double widthInEms);

/// The height of a line of that font, in ems: ascent, descent and line gap. Any thread.
double lineHeightInEms(const FontCatalog &fonts, const QString &fontName);

/// Draws the glyphs that are pictures. `painter` is set up so that a unit is a thousandth of an em.
void drawPictureGlyphs(QPainter &painter, const TextSetting &setting);

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"

#include <QGlyphRun>
#include <QPainterPath>
#include <QRectF>
#include <QString>

#include <mutex>
#include <vector>

namespace plexa
{

class FontCatalog;

enum class TextAlignment { Left, Center, Right };

/// A text set in a frame, as outlines. Lengths are in ems (1: the font size), origin at the frame's top left,
/// y downwards, so that one setting serves every size. Belongs to the thread that created it.
struct TextSetting {
    struct Glyph {
        std::size_t shape = 0; ///< its index in `shapes`
        QPointF at;            ///< the place of the shape's origin
    };
    /// A glyph without an outline (color emoji).
    struct PictureGlyph {
        QGlyphRun run; ///< of this glyph alone, in thousandths of an em
        QRectF reach;  ///< contains the glyph
    };

    std::vector<QPainterPath> shapes; ///< each kind of glyph once, non-zero winding, its origin at (0, 0)
    std::vector<Glyph> glyphs;        ///< the visible ones, in reading order
    std::vector<PictureGlyph> pictureGlyphs;
    double height = 0; ///< of the frame
    QString missing;   ///< the characters that no installed font has, each once; a box is drawn for them
};

/// The most UTF-16 units that a watermark's text may have.
constexpr qsizetype kMaxTextCharacters = 10'000;

/// Lines break between words, inside words that are wider than the frame, and at line breaks of the text.
/// Characters that the font lacks come from the system's substitutes. Any thread.
/// @param fontName    PostScript name; the default font replaces one that is not installed
/// @param widthInEms  of the frame, > 0
[[nodiscard]] Result<TextSetting> setText(const QString &text, const FontCatalog &fonts,
                                          const QString &fontName, TextAlignment alignment,
                                          double widthInEms);

/// The height of a line of that font, in ems: ascent, descent and line gap. Any thread.
double lineHeightInEms(const FontCatalog &fonts, const QString &fontName);

/// Draws the picture glyphs that reach into `part`.
/// @param painter  its unit is a thousandth of an em
/// @param part     in ems
void drawPictureGlyphs(QPainter &painter, const TextSetting &setting, const QRectF &part);

} // namespace plexa

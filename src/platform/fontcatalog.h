// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QFont>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

namespace plexa
{

/// A font of any size, made from one of a whole size: Qt rounds sizes to whole pixels. Text is laid out with
/// `font`, then everything (lengths, glyph positions, outlines) is multiplied by `scale`, as with
/// `QPainter::scale(scale, scale)`; a line width in the picture's pixels is divided by it first.
struct SizedFont {
    QFont font;       ///< its size is pixelSize(): whole, and the same on every paint device; hinting off
    double scale = 1; ///< > 0; 1 for most whole sizes
};

/// The fonts of this desktop by their PostScript names ("DejaVuSans-Bold"), which is how presets store them.
/// Loaded once when made; all functions afterwards are const and may be called from any thread. fontNamed(),
/// defaultFont() and emojiFont() need a QGuiApplication.
class FontCatalog final
{
public:
    FontCatalog();
    ~FontCatalog();
    FontCatalog(const FontCatalog &) = delete;
    FontCatalog &operator=(const FontCatalog &) = delete;

    /// The font of exactly that PostScript name (letter case counts). Where several installed faces have the
    /// name, it is the plainest one's, in the newest version; the others are then known under the family's
    /// and the style's name without blanks, "-" between them.
    /// @param pixelSize  the em's height in pixels, may be fractional; what is not above 0 counts as tiny
    /// @return none when no such font is installed
    std::optional<SizedFont> fontNamed(const QString &postScriptName, double pixelSize) const;

    /// The default sans-serif font; always usable.
    SizedFont defaultFont(double pixelSize) const;

    /// The font of colored emoji; none if none is installed.
    std::optional<SizedFont> emojiFont(double pixelSize) const;

    /// The default font's PostScript name; empty only where no font at all is installed.
    QString defaultFontName() const;

    /// The PostScript name of a family's style, letter case ignored; empty when there is none. Also takes the
    /// family's other names (in another language, or the short one of a width such as "DejaVu Sans
    /// Condensed") with the style's name there.
    QString postScriptName(const QString &family, const QString &style) const;

    /// The PostScript names of all faces, sorted.
    QStringList postScriptNames() const;

    /// All families, sorted for people.
    QStringList families() const;

    /// The styles of a family: normal width before the others; from light to heavy, upright before slanted.
    QStringList styles(const QString &family) const;

    /// Family and style of a PostScript name, as families() and styles() list them; both empty when it is
    /// unknown.
    struct Face {
        QString family;
        QString style;
    };
    Face face(const QString &postScriptName) const;

private:
    struct Data;
    std::unique_ptr<const Data> m_data;
};

} // namespace plexa

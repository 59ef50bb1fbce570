// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QFont>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

namespace plexa
{

/// The fonts of this desktop by their PostScript names ("DejaVuSans-Bold"), which is how presets store them.
/// Loaded once when made; all functions afterwards are const and may be called from any thread.
class FontCatalog final
{
public:
    FontCatalog();
    ~FontCatalog();
    FontCatalog(const FontCatalog &) = delete;
    FontCatalog &operator=(const FontCatalog &) = delete;

    /// The font of that PostScript name, where 1 point is 1 pixel; hinting off.
    /// @param pixelSize  > 0, may be fractional
    /// @return none when no such font is installed
    std::optional<QFont> fontNamed(const QString &postScriptName, double pixelSize) const;

    /// The default sans-serif font; always usable.
    QFont defaultFont(double pixelSize) const;
    QString defaultFontName() const;

    /// The PostScript name of a family's style; empty when there is none.
    QString postScriptName(const QString &family, const QString &style) const;

    /// All families, sorted for people.
    QStringList families() const;

    /// The styles of a family, from light to heavy, upright before slanted.
    QStringList styles(const QString &family) const;

    /// Family and style of a PostScript name; both empty when it is unknown.
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

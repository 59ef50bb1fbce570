// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "watermark/savingpresetreference.h"
#include "watermark/watermarkpicture.h"

#include <QColor>
#include <QString>
#include <QStringList>

#include <optional>

namespace plexa
{

class FontCatalog;

/// A boxed number: it may be absent, and then counts as 0.
using WholeNumber = std::optional<int>;
using FloatNumber = std::optional<float>;

// clang-format off
/// The list of a watermark preset's fields, in declaration order, from which the members of WPresetValues, the
/// table of wpresetfields.h and the accessors of WPreset are generated.
/// FIELD(name, Name, type, default): "WP" followed by `Name` is the archive key. Values may be absent: a null
/// QString, an empty list, an invalid QColor, a null picture, a null pointer.
#define PLEXA_WPRESET_FIELDS(FIELD)                                                                        \
    FIELD(name, Name, QString, QStringLiteral("New Preset"))                                               \
    FIELD(type, Type, QString, QStringLiteral("Text"))                                                     \
    FIELD(textTokens, TextTokens, QStringList, {})                                                         \
    FIELD(font, Font, QString, {})                                                                         \
    FIELD(fontSize, FontSize, WholeNumber, 8)                                                              \
    FIELD(fontSizeUnit, FontSizeUnit, QString, QStringLiteral("% of short edge"))                          \
    FIELD(textAlignment, TextAlignment, WholeNumber, 0)                                                    \
    FIELD(fillColor, FillColor, QColor, QColor(255, 255, 255))                                             \
    FIELD(stroke, Stroke, bool, true)                                                                      \
    FIELD(strokeColor, StrokeColor, QColor, QColor(0, 0, 0))                                               \
    FIELD(strokeWidth, StrokeWidth, WholeNumber, 2)                                                        \
    FIELD(image, Image, WatermarkPicture, {})                                                              \
    FIELD(width, Width, WholeNumber, 98)                                                                   \
    FIELD(widthUnit, WidthUnit, QString, QStringLiteral("% of width"))                                     \
    FIELD(anchorPoint, AnchorPoint, WholeNumber, 6)                                                        \
    FIELD(offsetHorizontal, OffsetHorizontal, WholeNumber, 1)                                              \
    FIELD(offsetHorizontalUnit, OffsetHorizontalUnit, QString, QStringLiteral("% of width"))               \
    FIELD(offsetVertical, OffsetVertical, WholeNumber, 1)                                                  \
    FIELD(offsetVerticalUnit, OffsetVerticalUnit, QString, QStringLiteral("% of height"))                  \
    FIELD(angle, Angle, FloatNumber, 0.0F)                                                                 \
    FIELD(rotation, Rotation, WholeNumber, 0)                                                              \
    FIELD(flip, Flip, WholeNumber, 0)                                                                      \
    FIELD(replicateHorizontal, ReplicateHorizontal, bool, false)                                           \
    FIELD(replicateHorizontalDistance, ReplicateHorizontalDistance, WholeNumber, 10)                       \
    FIELD(replicateHorizontalDistanceUnit, ReplicateHorizontalDistanceUnit, QString, QStringLiteral("% of width")) \
    FIELD(replicateVertical, ReplicateVertical, bool, false)                                               \
    FIELD(replicateVerticalDistance, ReplicateVerticalDistance, WholeNumber, 10)                           \
    FIELD(replicateVerticalDistanceUnit, ReplicateVerticalDistanceUnit, QString, QStringLiteral("% of height")) \
    FIELD(opacity, Opacity, WholeNumber, 100)                                                              \
    FIELD(blendMode, BlendMode, QString, QStringLiteral("Normal"))                                         \
    FIELD(shadow, Shadow, bool, false)                                                                     \
    FIELD(shadowBlur, ShadowBlur, WholeNumber, 5)                                                          \
    FIELD(shadowOffset, ShadowOffset, WholeNumber, 1)                                                      \
    FIELD(shadowOffsetUnit, ShadowOffsetUnit, QString, QStringLiteral("% of short edge"))                  \
    FIELD(shadowAngle, ShadowAngle, FloatNumber, -45.0F)                                                   \
    FIELD(background, Background, bool, false)                                                             \
    FIELD(backgroundColor, BackgroundColor, QColor, QColor(0, 0, 0))                                       \
    FIELD(backgroundPaddingTop, BackgroundPaddingTop, WholeNumber, 20)                                     \
    FIELD(backgroundPaddingBottom, BackgroundPaddingBottom, WholeNumber, 20)                               \
    FIELD(backgroundPaddingLeft, BackgroundPaddingLeft, WholeNumber, 20)                                   \
    FIELD(backgroundPaddingRight, BackgroundPaddingRight, WholeNumber, 20)                                 \
    FIELD(backgroundPaddingUnit, BackgroundPaddingUnit, QString, QStringLiteral("Pixels"))                 \
    FIELD(backgroundOpacity, BackgroundOpacity, WholeNumber, 50)                                           \
    FIELD(backgroundFullWidth, BackgroundFullWidth, bool, true)                                            \
    FIELD(assignedSavingPreset, AssignedSavingPreset, SavingPresetPtr, {})
// clang-format on

/// The fields of a watermark preset as plain values, for layout, drawing and worker threads. Copies share the
/// picture and the saving preset, which are compared by identity. Angles are in degrees, counter-clockwise.
struct WPresetValues {
#define PLEXA_DECLARE_FIELD(name, Name, Type, initial) Type name = initial;
    PLEXA_WPRESET_FIELDS(PLEXA_DECLARE_FIELD)
#undef PLEXA_DECLARE_FIELD

    bool operator==(const WPresetValues &) const = default;

    /// The defaults above with the default font's name and the text "(c) YEAR USER".
    static WPresetValues forNewPreset(const FontCatalog &fonts);

    /// False for an image watermark whose picture cannot be read.
    bool validPreset() const;

    /// The message with the preset's name and the reason why its picture cannot be read; empty without a
    /// fault.
    QString pictureFault() const;
};

} // namespace plexa

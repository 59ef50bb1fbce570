// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/fieldlimits.h"

#include "raster/blendmode.h"
#include "watermark/textwatermark.h"
#include "watermark/wpresetfields.h"

#include <algorithm>
#include <array>

namespace plexa
{
namespace
{

/// Far above every photo.
constexpr int kLongest = 100'000;

struct NumberLimits {
    FieldId field;
    int lowest;
    int highest;
    const char *unit;
    const char *meaning;
};

constexpr std::array kNumbers{
    NumberLimits{FieldId::FontSize, 1, kLongest, "fontSizeUnit", ""},
    NumberLimits{FieldId::TextAlignment, 0, 2, "", "0 left, 1 centered, 2 right"},
    NumberLimits{FieldId::StrokeWidth, -kWidestStroke, kWidestStroke, "% of the font size",
                 "below 0: outlines without a fill"},
    NumberLimits{FieldId::Width, 1, kLongest, "widthUnit", ""},
    NumberLimits{FieldId::AnchorPoint, 0, 8, "",
                 "0 top left, 1 top center, 2 top right, 3 middle left, 4 center, 5 middle right, "
                 "6 bottom left, 7 bottom center, 8 bottom right"},
    NumberLimits{FieldId::OffsetHorizontal, -kLongest, kLongest, "offsetHorizontalUnit", ""},
    NumberLimits{FieldId::OffsetVertical, -kLongest, kLongest, "offsetVerticalUnit", ""},
    NumberLimits{FieldId::Rotation, 0, 3, "",
                 "0 none, 1 a quarter to the left, 2 a quarter to the right, 3 a half"},
    NumberLimits{FieldId::Flip, 0, 3, "", "0 none, 1 left-right, 2 top-bottom, 3 both"},
    NumberLimits{FieldId::ReplicateHorizontalDistance, -kLongest, kLongest, "replicateHorizontalDistanceUnit",
                 ""},
    NumberLimits{FieldId::ReplicateVerticalDistance, -kLongest, kLongest, "replicateVerticalDistanceUnit",
                 ""},
    NumberLimits{FieldId::Opacity, 0, 100, "%", ""},
    NumberLimits{FieldId::ShadowBlur, 0, kLongest, "pixels", ""},
    NumberLimits{FieldId::ShadowOffset, -kLongest, kLongest, "shadowOffsetUnit", ""},
    NumberLimits{FieldId::BackgroundPaddingTop, -kLongest, kLongest, "backgroundPaddingUnit", ""},
    NumberLimits{FieldId::BackgroundPaddingBottom, -kLongest, kLongest, "backgroundPaddingUnit", ""},
    NumberLimits{FieldId::BackgroundPaddingLeft, -kLongest, kLongest, "backgroundPaddingUnit", ""},
    NumberLimits{FieldId::BackgroundPaddingRight, -kLongest, kLongest, "backgroundPaddingUnit", ""},
    NumberLimits{FieldId::BackgroundOpacity, 0, 100, "%", ""},
};

QStringList unitsOf(FieldId field)
{
    QStringList units{QStringLiteral("% of width"), QStringLiteral("% of height"),
                      QStringLiteral("% of long edge"), QStringLiteral("% of short edge")};
    // Other units of a font size scale it by itself.
    return units << (field == FieldId::FontSizeUnit ? QStringLiteral("Points") : QStringLiteral("Pixels"));
}

QStringList choicesOf(const WPresetField &field)
{
    if (field.isUnit())
        return unitsOf(field.id);
    if (field.id == FieldId::Type)
        return {QStringLiteral("Text"), QStringLiteral("Image")};
    QStringList names;
    for (int mode = 0; field.id == FieldId::BlendMode && mode < kBlendModeCount; ++mode)
        names.append(nameOf(static_cast<BlendMode>(mode)));
    return names;
}

} // namespace

FieldLimits limitsOf(const WPresetField &field)
{
    FieldLimits limits;
    limits.choices = choicesOf(field);
    if (field.kind == FieldKind::Float)
        limits.unit = QStringLiteral("degrees, counter-clockwise");
    const auto row = std::find_if(kNumbers.begin(), kNumbers.end(),
                                  [&](const NumberLimits &numbers) { return numbers.field == field.id; });
    if (row == kNumbers.end())
        return limits;
    limits.lowest = row->lowest;
    limits.highest = row->highest;
    limits.unit = QLatin1StringView(row->unit);
    limits.meaning = QLatin1StringView(row->meaning);
    return limits;
}

} // namespace plexa

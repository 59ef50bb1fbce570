// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"
#include "watermark/wpresetvalues.h"

#include <QJsonObject>
#include <QJsonValue>
#include <QLatin1StringView>

#include <span>
#include <variant>

namespace plexa
{

/// The fields by number, in declaration order. The enumerators are spelled as the archive keys without "WP".
enum class FieldId {
#define PLEXA_ENUMERATE_FIELD(name, Name, Type, initial) Name,
    PLEXA_WPRESET_FIELDS(PLEXA_ENUMERATE_FIELD)
#undef PLEXA_ENUMERATE_FIELD
};

/// A field's value, whatever its kind.
using FieldValue = std::variant<QString, QStringList, WholeNumber, FloatNumber, bool, QColor,
                                WatermarkPicture, SavingPresetPtr>;

/// What a field holds, in the order of FieldValue's alternatives.
enum class FieldKind { String, Strings, Integer, Float, Boolean, Color, Image, SavingPreset };

/// One row of the table of fields.
struct WPresetField {
    FieldId id;
    QLatin1StringView name;       ///< "fontSize"
    QLatin1StringView archiveKey; ///< "WPFontSize"
    FieldKind kind;
    FieldValue (*value)(const WPresetValues &values);
    /// @param value  must be of the field's kind
    void (*setValue)(WPresetValues &values, const FieldValue &value);

    /// Does it hold the unit of a length?
    bool isUnit() const { return name.endsWith(QLatin1StringView("Unit")); }
};

/// All fields, in declaration order.
std::span<const WPresetField> wPresetFields();

const WPresetField &wPresetField(FieldId id);

/// The field of exactly that name; null when there is none.
const WPresetField *wPresetField(QStringView name);

/// The units that lengths are measured in, as they are stored and shown.
const QStringList &lengthUnits();

/// Sets a field from JSON. Strings are strings (for `textTokens` an array of strings, or one string as its
/// only piece), numbers numbers, colors "#rrggbb" or "#rrggbbaa", `image` the path of a picture, which is
/// loaded; null makes the value absent.
/// @return a failure that says what is allowed, for an unknown field, a value of the wrong type, an unknown
///         unit and an unreadable picture; the values are then unchanged
[[nodiscard]] Result<void> setField(WPresetValues &values, const QString &name, const QJsonValue &value);

/// A text that a person typed, as JSON: a single value of any kind; undefined when it is not JSON.
QJsonValue jsonInText(const QString &text);

/// Sets a field from a text that a person typed: as JSON where it is JSON, else as a string. A field that
/// holds a string takes the text as it stands unless it is a JSON string ("2024" and "true" are texts there).
[[nodiscard]] Result<void> setFieldFromText(WPresetValues &values, const QString &name, const QString &text);

/// A value as JSON, in the form that setField() takes; a picture as an object with its "width" and "height",
/// a saving preset as its number.
QJsonValue valueAsJson(const FieldValue &value);

/// All fields by their names.
QJsonObject asJson(const WPresetValues &values);

} // namespace plexa

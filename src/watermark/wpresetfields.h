// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"
#include "watermark/fieldlimits.h"
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

/// The kind of a field's value, in the order of FieldValue's alternatives.
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

    /// Has it an effect on texts only?
    bool isOfText() const { return id >= FieldId::TextTokens && id <= FieldId::StrokeWidth; }

    /// Is its value the unit of a length?
    bool isUnit() const { return name.endsWith(QLatin1StringView("Unit")); }
};

/// All fields, in declaration order.
std::span<const WPresetField> wPresetFields();

const WPresetField &wPresetField(FieldId id);

/// Null if there is no field of exactly that name.
const WPresetField *wPresetField(QStringView name);

/// The value of a field in JSON: strings (for Strings an array of them, or a single one), numbers, booleans,
/// colors "#rrggbb" or "#rrggbbaa", and the path of a picture, which is loaded. Null makes a value absent.
/// @param name  of the field, for messages
/// @return a failure that states the allowed values
[[nodiscard]] Result<FieldValue> fieldValueFrom(const QString &name, FieldKind kind,
                                                const FieldLimits &limits, const QJsonValue &json);

/// The same for a text that a person typed: JSON where it is JSON, else a string. For a field of one string
/// "2024" and "true" are strings; for a list they are refused. A list that begins with "[" has to be JSON:
/// the shell may have removed its quotation marks.
[[nodiscard]] Result<FieldValue> fieldValueFromText(const QString &name, FieldKind kind,
                                                    const FieldLimits &limits, const QString &text);

/// Set a field of this name. A failure states the allowed values and leaves the values unchanged.
[[nodiscard]] Result<void> setField(WPresetValues &values, const QString &name, const QJsonValue &value);
[[nodiscard]] Result<void> setFieldFromText(WPresetValues &values, const QString &name, const QString &text);

/// A value as JSON, in the form of fieldValueFrom(); a picture as an object with "width" and "height", a
/// saving preset as its number.
QJsonValue valueAsJson(const FieldValue &value);

/// All fields by their names.
QJsonObject asJson(const WPresetValues &values);

} // namespace plexa

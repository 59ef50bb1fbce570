// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "presets/savingpresetvalues.h"
#include "watermark/wpresetfields.h"

#include <QByteArrayView>

#include <type_traits>

namespace plexa
{

/// The fields by number, in declaration order.
enum class SavingField {
#define PLEXA_ENUMERATE_FIELD(name, Name, Type, element, initial) Name,
    PLEXA_SAVINGPRESET_FIELDS(PLEXA_ENUMERATE_FIELD)
#undef PLEXA_ENUMERATE_FIELD
};

/// The alternative of FieldValue that holds a member of type T.
template<class T>
using SavingFieldAlternative = std::conditional_t<std::is_same_v<T, int>, WholeNumber, T>;

/// One row of the table of fields, with values of the same type as those of watermark presets.
struct SavingPresetField {
    SavingField id;
    QLatin1StringView name;    ///< "jpegQuality"
    QByteArrayView xmlElement; ///< "quality"
    FieldKind kind;            ///< String, Strings, Integer (always present) or Boolean
    FieldValue (*value)(const SavingPresetValues &values);
    /// @param value  must be of the field's kind
    void (*setValue)(SavingPresetValues &values, const FieldValue &value);

    /// The allowed values; texts in the order of a menu.
    FieldLimits limits() const;
};

/// All fields, in declaration order.
std::span<const SavingPresetField> savingPresetFields();

const SavingPresetField &savingPresetField(SavingField id);

/// The field of exactly that name; null when there is none.
const SavingPresetField *savingPresetField(QStringView name);

} // namespace plexa

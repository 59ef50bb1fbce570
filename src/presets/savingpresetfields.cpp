// SPDX-License-Identifier: GPL-3.0-or-later

#include "presets/savingpresetfields.h"

#include "presets/savingformats.h"

#include <algorithm>
#include <array>

namespace plexa
{
namespace
{

template<class T>
constexpr FieldKind kKindOf = [] {
    if (std::is_same_v<T, QStringList>)
        return FieldKind::Strings;
    if (std::is_same_v<T, int>)
        return FieldKind::Integer;
    return std::is_same_v<T, bool> ? FieldKind::Boolean : FieldKind::String;
}();

template<class T, T SavingPresetValues::*member>
FieldValue valueOf(const SavingPresetValues &values)
{
    return FieldValue(std::in_place_type<SavingFieldAlternative<T>>, values.*member);
}

template<class T, T SavingPresetValues::*member>
void setValueOf(SavingPresetValues &values, const FieldValue &value)
{
    const auto *const given = std::get_if<SavingFieldAlternative<T>>(&value);
    Q_ASSERT(given);
    if (!given)
        return;
    if constexpr (std::is_same_v<T, int>)
        values.*member = given->value_or(0);
    else
        values.*member = *given;
}

constexpr std::array kFields{
#define PLEXA_FIELD_ROW(name, Name, Type, element, initial)                                                  \
    SavingPresetField{SavingField::Name,                                                                     \
                      QLatin1StringView(#name),                                                              \
                      QByteArrayView(element),                                                               \
                      kKindOf<Type>,                                                                         \
                      &valueOf<Type, &SavingPresetValues::name>,                                             \
                      &setValueOf<Type, &SavingPresetValues::name>},
    PLEXA_SAVINGPRESET_FIELDS(PLEXA_FIELD_ROW)
#undef PLEXA_FIELD_ROW
};

} // namespace

FieldLimits SavingPresetField::limits() const
{
    FieldLimits limits;
    switch (id) {
    case SavingField::FileBaseNameCase:
    case SavingField::FileExtensionCase:
        limits.choices = {QStringLiteral("do not change"), QStringLiteral("lower case"),
                          QStringLiteral("upper case")};
        break;
    case SavingField::ImageFormat:
        limits.choices = savingFormatNames();
        break;
    case SavingField::AlternativeImageFormat:
        limits.choices = savingFormatNamesWithoutOriginal();
        break;
    case SavingField::JpegQuality:
        limits.lowest = SavingPresetValues::kLowestQuality;
        limits.highest = SavingPresetValues::kHighestQuality;
        limits.unit = QStringLiteral("%");
        break;
    default:
        break;
    }
    return limits;
}

std::span<const SavingPresetField> savingPresetFields()
{
    return kFields;
}

const SavingPresetField &savingPresetField(SavingField id)
{
    return kFields.at(static_cast<std::size_t>(id));
}

const SavingPresetField *savingPresetField(QStringView name)
{
    const auto found = std::find_if(kFields.begin(), kFields.end(),
                                    [name](const SavingPresetField &field) { return name == field.name; });
    return found == kFields.end() ? nullptr : &*found;
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/wpresetfields.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace plexa
{
namespace
{

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(plexa::WPresetField)
};

template<class T, class Variant>
struct IndexIn;

template<class T, class... Others>
struct IndexIn<T, std::variant<T, Others...>> : std::integral_constant<int, 0> {
};

template<class T, class First, class... Others>
struct IndexIn<T, std::variant<First, Others...>>
    : std::integral_constant<int, 1 + IndexIn<T, std::variant<Others...>>::value> {
};

template<class T, T WPresetValues::*member>
FieldValue valueOf(const WPresetValues &values)
{
    return FieldValue(std::in_place_type<T>, values.*member);
}

template<class T, T WPresetValues::*member>
void setValueOf(WPresetValues &values, const FieldValue &value)
{
    const T *const given = std::get_if<T>(&value);
    Q_ASSERT(given);
    if (given)
        values.*member = *given;
}

constexpr std::array kFields{
#define PLEXA_FIELD_ROW(name, Name, Type, initial)                                                           \
    WPresetField{FieldId::Name,                                                                              \
                 QLatin1StringView(#name),                                                                   \
                 QLatin1StringView("WP" #Name),                                                              \
                 static_cast<FieldKind>(IndexIn<Type, FieldValue>::value),                                   \
                 &valueOf<Type, &WPresetValues::name>,                                                       \
                 &setValueOf<Type, &WPresetValues::name>},
    PLEXA_WPRESET_FIELDS(PLEXA_FIELD_ROW)
#undef PLEXA_FIELD_ROW
};

/// The allowed numbers with their meaning, as in "a whole number from 0 to 3 (0 none, ...)".
QString numbersOf(const QString &kind, const FieldLimits &limits)
{
    if (!limits.isBounded())
        return kind;
    const QString range = Texts::tr("%1 from %2 to %3").arg(kind).arg(limits.lowest).arg(limits.highest);
    return limits.meaning.isEmpty() ? range : range + QStringLiteral(" (%1)").arg(limits.meaning);
}

tl::unexpected<Error> wrongType(const QString &name, const QString &expected)
{
    return fail(Texts::tr("\"%1\" takes %2").arg(name, expected));
}

Result<FieldValue> stringFrom(const QString &name, const QStringList &choices, const QJsonValue &json)
{
    if (!json.isString() && !json.isNull())
        return wrongType(name, Texts::tr("a text"));
    const QString text = json.toString();
    if (!choices.isEmpty() && !choices.contains(text)) {
        return fail(Texts::tr("\"%1\" is no value of \"%2\"; the values are: %3")
                        .arg(text, name, choices.join(QStringLiteral(", "))));
    }
    return FieldValue(text);
}

QString listForm()
{
    return Texts::tr("a list of texts in JSON, as in '[\"Photo: \",\"creator\"]'");
}

Result<FieldValue> stringsFrom(const QString &name, const QJsonValue &json)
{
    if (json.isNull())
        return FieldValue(QStringList());
    if (json.isString())
        return FieldValue(QStringList(json.toString()));
    const QJsonArray pieces = json.toArray();
    if (!json.isArray() ||
        !std::all_of(pieces.begin(), pieces.end(), [](const QJsonValue &piece) { return piece.isString(); }))
        return wrongType(name, listForm());
    return FieldValue(json.toVariant().toStringList());
}

Result<FieldValue> wholeNumberFrom(const QString &name, const FieldLimits &limits, const QJsonValue &json)
{
    if (json.isNull())
        return FieldValue(WholeNumber());
    const double number = json.toDouble(std::numeric_limits<double>::quiet_NaN());
    // False for NaN, too.
    const bool isWhole = number == std::floor(number) && number >= std::numeric_limits<int>::min() &&
                         number <= std::numeric_limits<int>::max();
    if (!isWhole || number < limits.lowest || number > limits.highest)
        return wrongType(name, numbersOf(Texts::tr("a whole number"), limits));
    return FieldValue(WholeNumber(static_cast<int>(number)));
}

Result<FieldValue> floatFrom(const QString &name, const QJsonValue &json)
{
    if (json.isNull())
        return FieldValue(FloatNumber());
    const double number = json.toDouble(std::numeric_limits<double>::quiet_NaN());
    const bool fits = std::abs(number) <= static_cast<double>(std::numeric_limits<float>::max());
    if (!fits)
        return wrongType(name, Texts::tr("a number"));
    return FieldValue(FloatNumber(static_cast<float>(number)));
}

Result<FieldValue> booleanFrom(const QString &name, const QJsonValue &json)
{
    if (!json.isBool())
        return wrongType(name, Texts::tr("true or false"));
    return FieldValue(json.toBool());
}

Result<FieldValue> colorFrom(const QString &name, const QJsonValue &json)
{
    if (json.isNull())
        return FieldValue(QColor());
    const QString text = json.toString();
    const qsizetype digits = text.size() - 1;
    bool isHex = text.startsWith(QLatin1Char('#')) && (digits == 6 || digits == 8);
    for (qsizetype i = 1; isHex && i < text.size(); ++i)
        isHex = text.at(i).unicode() < 128 && std::isxdigit(text.at(i).unicode()) != 0;
    if (!isHex)
        return wrongType(name, Texts::tr("a color: #rrggbb, or #rrggbbaa with its opacity"));
    const uint number = text.mid(1).toUInt(nullptr, 16);
    const QRgb rgb = digits == 8 ? number >> 8 : number;
    const int alpha = digits == 8 ? static_cast<int>(number & 0xff) : 255;
    return FieldValue(QColor(qRed(rgb), qGreen(rgb), qBlue(rgb), alpha));
}

Result<FieldValue> pictureFrom(const QString &name, const QJsonValue &json)
{
    if (json.isNull())
        return FieldValue(WatermarkPicture());
    if (!json.isString())
        return wrongType(name, Texts::tr("the path of a picture"));
    return WatermarkPicture::load(json.toString()).map([](const WatermarkPicture &picture) {
        return FieldValue(picture);
    });
}

Result<FieldValue> savingPresetFrom(const QString &name, const QJsonValue &json)
{
    if (!json.isNull())
        return fail(Texts::tr("\"%1\" refers to a saving preset and cannot be set here").arg(name));
    return FieldValue(SavingPresetPtr());
}

Result<const WPresetField *> existingField(const QString &name)
{
    if (const WPresetField *const field = wPresetField(name))
        return field;
    QStringList names;
    for (const WPresetField &field : kFields)
        names.append(field.name);
    return fail(Texts::tr("\"%1\" is not a field of a watermark preset; the fields are: %2")
                    .arg(name, names.join(QStringLiteral(", "))));
}

QString hexOf(const QColor &color)
{
    const QColor rgb = color.toRgb();
    const QString text = rgb.name(QColor::HexRgb);
    if (rgb.alpha() == 255)
        return text;
    return text + QStringLiteral("%1").arg(rgb.alpha(), 2, 16, QLatin1Char('0'));
}

struct ToJson {
    QJsonValue operator()(const QString &text) const { return text.isNull() ? QJsonValue() : text; }
    QJsonValue operator()(const QStringList &texts) const { return QJsonArray::fromStringList(texts); }
    QJsonValue operator()(WholeNumber number) const { return number ? QJsonValue(*number) : QJsonValue(); }
    QJsonValue operator()(FloatNumber number) const
    {
        return number ? QJsonValue(static_cast<double>(*number)) : QJsonValue();
    }
    QJsonValue operator()(bool on) const { return on; }
    QJsonValue operator()(const QColor &color) const
    {
        return color.isValid() ? QJsonValue(hexOf(color)) : QJsonValue();
    }
    QJsonValue operator()(const WatermarkPicture &picture) const
    {
        if (picture.isNull())
            return {};
        if (const QString fault = picture.fault(); !fault.isEmpty())
            return QJsonObject{{QStringLiteral("fault"), fault}};
        return QJsonObject{{QStringLiteral("width"), picture.size().width()},
                           {QStringLiteral("height"), picture.size().height()}};
    }
    QJsonValue operator()(const SavingPresetPtr &preset) const
    {
        return preset ? QJsonValue(preset->presetID()) : QJsonValue();
    }
};

} // namespace

std::span<const WPresetField> wPresetFields()
{
    return kFields;
}

const WPresetField &wPresetField(FieldId id)
{
    return kFields.at(static_cast<std::size_t>(id));
}

const WPresetField *wPresetField(QStringView name)
{
    for (const WPresetField &field : kFields) {
        if (name == field.name)
            return &field;
    }
    return nullptr;
}

Result<FieldValue> fieldValueFrom(const QString &name, FieldKind kind, const FieldLimits &limits,
                                  const QJsonValue &json)
{
    switch (kind) {
    case FieldKind::String:
        return stringFrom(name, limits.choices, json);
    case FieldKind::Strings:
        return stringsFrom(name, json);
    case FieldKind::Integer:
        return wholeNumberFrom(name, limits, json);
    case FieldKind::Float:
        return floatFrom(name, json);
    case FieldKind::Boolean:
        return booleanFrom(name, json);
    case FieldKind::Color:
        return colorFrom(name, json);
    case FieldKind::Image:
        return pictureFrom(name, json);
    case FieldKind::SavingPreset:
        return savingPresetFrom(name, json);
    }
    Q_UNREACHABLE();
}

Result<FieldValue> fieldValueFromText(const QString &name, FieldKind kind, const FieldLimits &limits,
                                      const QString &text)
{
    QJsonParseError error;
    const QJsonDocument list =
        QJsonDocument::fromJson((QLatin1Char('[') + text + QLatin1Char(']')).toUtf8(), &error);
    const bool isJson = error.error == QJsonParseError::NoError && list.array().size() == 1;
    if (kind == FieldKind::Strings && !isJson && text.startsWith(QLatin1Char('[')))
        return fail(
            Texts::tr("\"%1\" takes %2; %3 is not JSON (the shell removes quotation marks that are not "
                      "in single quotes)")
                .arg(name, listForm(), text));
    if (!isJson)
        return fieldValueFrom(name, kind, limits, text);
    const QJsonValue value = list.array().first();
    const bool isText = kind == FieldKind::String || kind == FieldKind::Image;
    if (kind == FieldKind::Strings && !value.isString() && !value.isArray())
        return fail(
            Texts::tr("\"%1\" takes %2; write '[\"%3\"]' for the text %3").arg(name, listForm(), text));
    return fieldValueFrom(name, kind, limits, isText && !value.isString() ? QJsonValue(text) : value);
}

Result<void> setField(WPresetValues &values, const QString &name, const QJsonValue &value)
{
    return existingField(name).and_then([&](const WPresetField *field) {
        return fieldValueFrom(name, field->kind, limitsOf(*field), value)
            .map([&](const FieldValue &converted) { field->setValue(values, converted); });
    });
}

Result<void> setFieldFromText(WPresetValues &values, const QString &name, const QString &text)
{
    return existingField(name).and_then([&](const WPresetField *field) {
        return fieldValueFromText(name, field->kind, limitsOf(*field), text)
            .map([&](const FieldValue &converted) { field->setValue(values, converted); });
    });
}

QJsonValue valueAsJson(const FieldValue &value)
{
    return std::visit(ToJson(), value);
}

QJsonObject asJson(const WPresetValues &values)
{
    QJsonObject object;
    for (const WPresetField &field : kFields)
        object.insert(field.name, valueAsJson(field.value(values)));
    return object;
}

} // namespace plexa

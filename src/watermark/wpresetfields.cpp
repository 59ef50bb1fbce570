// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/wpresetfields.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>

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

tl::unexpected<Error> wrongType(const WPresetField &field, const QString &expected)
{
    return fail(Texts::tr("\"%1\" takes %2").arg(field.name, expected));
}

Result<FieldValue> stringFrom(const WPresetField &field, const QJsonValue &json)
{
    if (!json.isString() && !json.isNull())
        return wrongType(field, Texts::tr("a text"));
    const QString text = json.toString();
    if (field.isUnit() && !lengthUnits().contains(text)) {
        return fail(Texts::tr("\"%1\" is not a unit for \"%2\"; the units are: %3")
                        .arg(text, field.name, lengthUnits().join(QStringLiteral(", "))));
    }
    return FieldValue(text);
}

Result<FieldValue> stringsFrom(const WPresetField &field, const QJsonValue &json)
{
    if (json.isNull())
        return FieldValue(QStringList());
    if (json.isString())
        return FieldValue(QStringList(json.toString()));
    QStringList texts;
    for (const QJsonValue piece : json.toArray()) {
        if (!piece.isString())
            return wrongType(field, Texts::tr("a list of texts, as in [\"Photo: \", \"creator\"]"));
        texts.append(piece.toString());
    }
    if (!json.isArray())
        return wrongType(field, Texts::tr("a list of texts, as in [\"Photo: \", \"creator\"]"));
    return FieldValue(texts);
}

Result<FieldValue> wholeNumberFrom(const WPresetField &field, const QJsonValue &json)
{
    if (json.isNull())
        return FieldValue(WholeNumber());
    const double number = json.toDouble(std::numeric_limits<double>::quiet_NaN());
    // False for NaN, too.
    const bool isWhole = number == std::floor(number) && number >= std::numeric_limits<int>::min() &&
                         number <= std::numeric_limits<int>::max();
    if (!isWhole)
        return wrongType(field, Texts::tr("a whole number"));
    return FieldValue(WholeNumber(static_cast<int>(number)));
}

Result<FieldValue> floatFrom(const WPresetField &field, const QJsonValue &json)
{
    if (json.isNull())
        return FieldValue(FloatNumber());
    const double number = json.toDouble(std::numeric_limits<double>::quiet_NaN());
    const bool fits = std::abs(number) <= static_cast<double>(std::numeric_limits<float>::max());
    if (!fits)
        return wrongType(field, Texts::tr("a number"));
    return FieldValue(FloatNumber(static_cast<float>(number)));
}

Result<FieldValue> booleanFrom(const WPresetField &field, const QJsonValue &json)
{
    if (!json.isBool())
        return wrongType(field, Texts::tr("true or false"));
    return FieldValue(json.toBool());
}

Result<FieldValue> colorFrom(const WPresetField &field, const QJsonValue &json)
{
    if (json.isNull())
        return FieldValue(QColor());
    const QString text = json.toString();
    const qsizetype digits = text.size() - 1;
    bool isHex = text.startsWith(QLatin1Char('#')) && (digits == 6 || digits == 8);
    for (qsizetype i = 1; isHex && i < text.size(); ++i)
        isHex = text.at(i).unicode() < 128 && std::isxdigit(text.at(i).unicode()) != 0;
    if (!isHex)
        return wrongType(field, Texts::tr("a color: #rrggbb, or #rrggbbaa with its opacity"));
    const uint number = text.mid(1).toUInt(nullptr, 16);
    const QRgb rgb = digits == 8 ? number >> 8 : number;
    const int alpha = digits == 8 ? static_cast<int>(number & 0xff) : 255;
    return FieldValue(QColor(qRed(rgb), qGreen(rgb), qBlue(rgb), alpha));
}

Result<FieldValue> pictureFrom(const WPresetField &field, const QJsonValue &json)
{
    if (json.isNull())
        return FieldValue(WatermarkPicture());
    if (!json.isString())
        return wrongType(field, Texts::tr("the path of a picture"));
    return WatermarkPicture::load(json.toString()).map([](const WatermarkPicture &picture) {
        return FieldValue(picture);
    });
}

Result<FieldValue> savingPresetFrom(const WPresetField &field, const QJsonValue &json)
{
    if (!json.isNull())
        return fail(Texts::tr("\"%1\" refers to a saving preset and cannot be set here").arg(field.name));
    return FieldValue(SavingPresetPtr());
}

Result<FieldValue> valueFrom(const WPresetField &field, const QJsonValue &json)
{
    switch (field.kind) {
    case FieldKind::String:
        return stringFrom(field, json);
    case FieldKind::Strings:
        return stringsFrom(field, json);
    case FieldKind::Integer:
        return wholeNumberFrom(field, json);
    case FieldKind::Float:
        return floatFrom(field, json);
    case FieldKind::Boolean:
        return booleanFrom(field, json);
    case FieldKind::Color:
        return colorFrom(field, json);
    case FieldKind::Image:
        return pictureFrom(field, json);
    case FieldKind::SavingPreset:
        return savingPresetFrom(field, json);
    }
    Q_UNREACHABLE();
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

const QStringList &lengthUnits()
{
    static const QStringList units{QStringLiteral("% of width"),     QStringLiteral("% of height"),
                                   QStringLiteral("% of long edge"), QStringLiteral("% of short edge"),
                                   QStringLiteral("Pixels"),         QStringLiteral("Points")};
    return units;
}

Result<void> setField(WPresetValues &values, const QString &name, const QJsonValue &value)
{
    const Result<const WPresetField *> field = existingField(name);
    if (!field)
        return tl::unexpected(field.error());
    const Result<FieldValue> converted = valueFrom(**field, value);
    if (!converted)
        return tl::unexpected(converted.error());
    (*field)->setValue(values, *converted);
    return {};
}

QJsonValue jsonInText(const QString &text)
{
    QJsonParseError error;
    const QJsonDocument list =
        QJsonDocument::fromJson((QLatin1Char('[') + text + QLatin1Char(']')).toUtf8(), &error);
    if (error.error != QJsonParseError::NoError || list.array().size() != 1)
        return QJsonValue(QJsonValue::Undefined);
    return list.array().first();
}

Result<void> setFieldFromText(WPresetValues &values, const QString &name, const QString &text)
{
    const Result<const WPresetField *> field = existingField(name);
    if (!field)
        return tl::unexpected(field.error());
    QJsonValue value = jsonInText(text);
    const bool isText = (*field)->kind == FieldKind::String || (*field)->kind == FieldKind::Image;
    const bool isList = (*field)->kind == FieldKind::Strings;
    if (value.isUndefined() || (isText && !value.isString()) ||
        (isList && !value.isString() && !value.isArray()))
        value = text;
    return setField(values, name, value);
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

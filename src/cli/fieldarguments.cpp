// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/fieldarguments.h"

#include "presets/savingformats.h"
#include "watermark/wpresetfields.h"
#include "watermark/wpresetvalues.h"

#include <QHash>
#include <QJsonArray>

#include <algorithm>
#include <functional>
#include <utility>

namespace plexa
{

namespace
{

Result<QString> oneOf(const FieldArgument &field, const QStringList &allowed)
{
    if (allowed.contains(field.text))
        return field.text;
    return fail(QStringLiteral("%1: \"%2\" is none of %3")
                    .arg(field.name, field.text, QStringLiteral("\"%1\"").arg(allowed.join(u"\", \""))));
}

Result<QString> letterCase(const FieldArgument &field)
{
    return oneOf(
        field, {QStringLiteral("do not change"), QStringLiteral("lower case"), QStringLiteral("upper case")});
}

/// "Original" cannot stand for itself.
QStringList alternativeFormats()
{
    QStringList formats = savingFormatNames();
    formats.removeAll(originalFormatName());
    return formats;
}

/// A text in JSON, else as it is.
QString textOf(const FieldArgument &field)
{
    const QJsonValue json = jsonInText(field.text);
    return json.isString() ? json.toString() : field.text;
}

/// A list in JSON, or a single token.
Result<QStringList> tokens(const FieldArgument &field)
{
    const QJsonValue json = jsonInText(field.text);
    QStringList list;
    if (!json.isArray())
        list.append(textOf(field));
    for (const QJsonValue &token : json.toArray()) {
        if (!token.isString())
            return fail(
                QStringLiteral("%1: a list of texts, as in [\"filename\",\"-small\"]").arg(field.name));
        list.append(token.toString());
    }
    if (std::all_of(list.begin(), list.end(), [](const QString &token) { return token.isEmpty(); }))
        return fail(QStringLiteral("%1: at least one that is not empty").arg(field.name));
    return list;
}

Result<int> quality(const FieldArgument &field)
{
    bool isNumber = false;
    const int quality = field.text.toInt(&isNumber);
    if (isNumber && quality >= SavingPresetValues::kLowestQuality &&
        quality <= SavingPresetValues::kHighestQuality)
        return quality;
    return fail(QStringLiteral("%1: a whole number from %2 to %3")
                    .arg(field.name)
                    .arg(SavingPresetValues::kLowestQuality)
                    .arg(SavingPresetValues::kHighestQuality));
}

Result<bool> truth(const FieldArgument &field)
{
    if (field.text == QLatin1String("true") || field.text == QLatin1String("false"))
        return field.text == QLatin1String("true");
    return fail(QStringLiteral("%1: true or false").arg(field.name));
}

template<class T>
Result<void> set(T &member, Result<T> value)
{
    if (!value)
        return tl::unexpected(value.error());
    member = std::move(*value);
    return {};
}

} // namespace

Result<FieldArgument> FieldArgument::parse(const std::string &argument)
{
    const QString text = QString::fromStdString(argument);
    const qsizetype equals = text.indexOf(QLatin1Char('='));
    if (equals < 1)
        return fail(QStringLiteral("\"%1\" is not of the form FIELD=VALUE").arg(text));
    return FieldArgument{text.left(equals), text.mid(equals + 1)};
}

Result<void> applyField(WPresetValues &values, const std::string &argument)
{
    const Result<FieldArgument> field = FieldArgument::parse(argument);
    if (!field)
        return tl::unexpected(field.error());
    return setFieldFromText(values, field->name, field->text);
}

Result<void> checkSavingPreset(const SavingPresetValues &preset)
{
    const auto refuse = [&preset](const QString &reason) {
        return fail(QStringLiteral("the saving preset \"%1\": %2").arg(preset.name, reason));
    };
    const bool isOriginal = preset.imageFormat == originalFormatName();
    const QString &format = isOriginal ? preset.alternativeImageFormat : preset.imageFormat;
    if (!alternativeFormats().contains(format))
        return refuse(QStringLiteral("the format \"%1\" cannot be written; the formats are %2")
                          .arg(format, alternativeFormats().join(QLatin1String(", "))));
    if (preset.filenameTokens.isEmpty())
        return refuse(QStringLiteral("nothing says how its copies are named"));
    if (!preset.validPreset())
        return refuse(QStringLiteral("its quality is %1, not from %2 to %3")
                          .arg(preset.jpegQuality)
                          .arg(SavingPresetValues::kLowestQuality)
                          .arg(SavingPresetValues::kHighestQuality));
    return {};
}

Result<void> applySavingField(SavingPresetValues &preset, const std::string &argument)
{
    const Result<FieldArgument> field = FieldArgument::parse(argument);
    if (!field)
        return tl::unexpected(field.error());
    // A row for each field of a saving preset.
    const QHash<QString, std::function<Result<void>()>> setters{
        {QStringLiteral("name"), [&] { return set(preset.name, Result<QString>(textOf(*field))); }},
        {QStringLiteral("filenameTokens"), [&] { return set(preset.filenameTokens, tokens(*field)); }},
        {QStringLiteral("fileBaseNameCase"),
         [&] { return set(preset.fileBaseNameCase, letterCase(*field)); }},
        {QStringLiteral("fileExtensionCase"),
         [&] { return set(preset.fileExtensionCase, letterCase(*field)); }},
        {QStringLiteral("imageFormat"),
         [&] { return set(preset.imageFormat, oneOf(*field, savingFormatNames())); }},
        {QStringLiteral("alternativeImageFormat"),
         [&] { return set(preset.alternativeImageFormat, oneOf(*field, alternativeFormats())); }},
        {QStringLiteral("jpegQuality"), [&] { return set(preset.jpegQuality, quality(*field)); }},
        {QStringLiteral("tiffCompressionLZW"), [&] { return set(preset.tiffCompressionLZW, truth(*field)); }},
    };
    if (const auto setter = setters.constFind(field->name); setter != setters.cend())
        return (*setter)();
    QStringList names = setters.keys();
    names.sort();
    return fail(QStringLiteral("there is no field \"%1\" of a saving preset; the fields are %2")
                    .arg(field->name, names.join(QLatin1String(", "))));
}

} // namespace plexa

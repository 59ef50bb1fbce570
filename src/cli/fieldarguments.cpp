// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/fieldarguments.h"

#include "presets/savingformats.h"
#include "presets/savingpresetfields.h"

#include <QJsonArray>

#include <algorithm>

namespace plexa
{
namespace
{

/// "FIELD=VALUE" in its parts.
struct FieldArgument {
    QString name;
    QString text;
};

Result<FieldArgument> parsed(const std::string &argument)
{
    const QString text = QString::fromStdString(argument);
    const qsizetype equals = text.indexOf(u'=');
    if (equals < 1)
        return fail(QStringLiteral("\"%1\" is not of the form FIELD=VALUE").arg(text));
    return FieldArgument{text.left(equals), text.mid(equals + 1)};
}

/// The text of a JSON string, else the argument's text.
QString textOf(const FieldArgument &argument)
{
    const QJsonValue json = jsonInText(argument.text);
    return json.isString() ? json.toString() : argument.text;
}

Result<FieldValue> text(const FieldArgument &argument, const QStringList &choices)
{
    const QString text = textOf(argument);
    if (choices.isEmpty() || choices.contains(text))
        return text;
    return fail(QStringLiteral("%1: \"%2\" is not one of \"%3\"")
                    .arg(argument.name, text, choices.join(QLatin1String("\", \""))));
}

/// A list in JSON, or a single token.
Result<FieldValue> tokens(const FieldArgument &argument)
{
    const QJsonValue json = jsonInText(argument.text);
    QStringList list;
    if (!json.isArray())
        list.append(textOf(argument));
    for (const QJsonValue &token : json.toArray()) {
        if (!token.isString())
            return fail(
                QStringLiteral("%1: a list of texts, as in [\"filename\",\"-small\"]").arg(argument.name));
        list.append(token.toString());
    }
    if (std::all_of(list.begin(), list.end(), [](const QString &token) { return token.isEmpty(); }))
        return fail(QStringLiteral("%1: at least one that is not empty").arg(argument.name));
    return list;
}

Result<FieldValue> quality(const FieldArgument &argument)
{
    bool isNumber = false;
    const int quality = argument.text.toInt(&isNumber);
    if (isNumber && quality >= SavingPresetValues::kLowestQuality &&
        quality <= SavingPresetValues::kHighestQuality)
        return WholeNumber(quality);
    return fail(QStringLiteral("%1: a whole number from %2 to %3")
                    .arg(argument.name)
                    .arg(SavingPresetValues::kLowestQuality)
                    .arg(SavingPresetValues::kHighestQuality));
}

Result<FieldValue> truth(const FieldArgument &argument)
{
    if (argument.text == QLatin1String("true") || argument.text == QLatin1String("false"))
        return argument.text == QLatin1String("true");
    return fail(QStringLiteral("%1: true or false").arg(argument.name));
}

Result<FieldValue> valueOf(const SavingPresetField &field, const FieldArgument &argument)
{
    switch (field.kind) {
    case FieldKind::Strings:
        return tokens(argument);
    case FieldKind::Integer:
        return quality(argument);
    case FieldKind::Boolean:
        return truth(argument);
    default:
        return text(argument, field.choices());
    }
}

} // namespace

Result<void> applyField(WPresetValues &values, const std::string &argument)
{
    return parsed(argument).and_then(
        [&values](const FieldArgument &field) { return setFieldFromText(values, field.name, field.text); });
}

Result<void> checkSavingPreset(const SavingPresetValues &preset)
{
    const auto refuse = [&preset](const QString &reason) {
        return fail(QStringLiteral("the saving preset \"%1\": %2").arg(preset.name, reason));
    };
    const QString &format =
        preset.hideAlternativeFormat() ? preset.imageFormat : preset.alternativeImageFormat;
    const QStringList formats = savingFormatNamesWithoutOriginal();
    if (!formats.contains(format))
        return refuse(QStringLiteral("the format \"%1\" cannot be written; the formats are %2")
                          .arg(format, formats.join(QLatin1String(", "))));
    if (preset.filenameTokens.isEmpty())
        return refuse(QStringLiteral("it has no file-name tokens"));
    if (!preset.validPreset())
        return refuse(QStringLiteral("its quality is %1, not from %2 to %3")
                          .arg(preset.jpegQuality)
                          .arg(SavingPresetValues::kLowestQuality)
                          .arg(SavingPresetValues::kHighestQuality));
    return {};
}

Result<void> applySavingField(SavingPresetValues &preset, const std::string &argument)
{
    const Result<FieldArgument> given = parsed(argument);
    if (!given)
        return tl::unexpected(given.error());
    if (const SavingPresetField *const field = savingPresetField(given->name))
        return valueOf(*field, *given).map([&](const FieldValue &value) { field->setValue(preset, value); });
    QStringList names;
    for (const SavingPresetField &field : savingPresetFields())
        names.append(field.name);
    return fail(QStringLiteral("there is no field \"%1\" of a saving preset; the fields are %2")
                    .arg(given->name, names.join(QLatin1String(", "))));
}

} // namespace plexa

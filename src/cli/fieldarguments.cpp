// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/fieldarguments.h"

#include "cli/suggestions.h"
#include "platform/fontcatalog.h"
#include "presets/savingformats.h"
#include "presets/savingpresetfields.h"

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

tl::unexpected<Error> unknownField(const QString &name, const QString &owner, const QStringList &names)
{
    return fail(QStringLiteral("there is no field \"%1\" of %2").arg(name, owner) +
                didYouMean(name, names, QStringLiteral("; the fields are ") + names.join(u", ")));
}

/// Refuses an empty list: a name needs a piece.
Result<FieldValue> checked(const QString &name, const FieldValue &value)
{
    const auto *const tokens = std::get_if<QStringList>(&value);
    if (tokens && tokens->join(QString()).isEmpty())
        return fail(QStringLiteral("%1: at least one that is not empty").arg(name));
    return value;
}

/// Refuses the name of a font that is not installed.
Result<void> checkFont(const QString &font, const FontCatalog &fonts)
{
    const QStringList names = fonts.postScriptNames();
    if (font.isNull() || names.contains(font))
        return {};
    constexpr qsizetype kMaxShown = 8;
    const QString start = QString(font).remove(u' ').left(4);
    QStringList similar;
    for (const QString &name : names) {
        if (similar.size() < kMaxShown && name.startsWith(start, Qt::CaseInsensitive))
            similar.append(name);
    }
    const QString hint = similar.isEmpty()
                             ? QStringLiteral("the default is %1").arg(fonts.defaultFontName())
                             : QStringLiteral("similar names are %1").arg(similar.join(QLatin1String(", ")));
    return fail(QStringLiteral("there is no font \"%1\"; %2; \"plexa-cli fields font\" lists all fonts")
                    .arg(font, hint));
}

} // namespace

Result<void> applyField(WPresetValues &values, const std::string &argument, const FontCatalog &fonts)
{
    const Result<FieldArgument> field = parsed(argument);
    if (!field)
        return tl::unexpected(field.error());
    QStringList names;
    for (const WPresetField &known : wPresetFields())
        names.append(known.name);
    if (!names.contains(field->name))
        return unknownField(field->name, QStringLiteral("a watermark"), names);
    WPresetValues changed = values;
    Result<void> set = setFieldFromText(changed, field->name, field->text);
    if (set && field->name == QLatin1StringView("font"))
        set = checkFont(changed.font, fonts);
    return set.map([&] { values = std::move(changed); });
}

bool isForText(const std::string &argument)
{
    const WPresetField *const field =
        wPresetField(QString::fromStdString(argument.substr(0, argument.find('='))));
    return field && field->isOfText();
}

bool isForField(const std::string &argument, std::string_view field)
{
    return argument.starts_with(std::string(field) + '=');
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
    if (const SavingPresetField *const field = savingPresetField(given->name)) {
        return fieldValueFromText(given->name, field->kind, field->limits(), given->text)
            .and_then([&](const FieldValue &value) { return checked(given->name, value); })
            .map([&](const FieldValue &value) { field->setValue(preset, value); });
    }
    QStringList names;
    for (const SavingPresetField &field : savingPresetFields())
        names.append(field.name);
    return unknownField(given->name, QStringLiteral("a saving preset"), names);
}

} // namespace plexa

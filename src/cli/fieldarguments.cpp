// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/fieldarguments.h"

#include "presets/savingformats.h"
#include "watermark/wpresetfields.h"
#include "watermark/wpresetvalues.h"

namespace plexa
{

namespace
{

Result<QString> formatName(const FieldArgument &field, const QStringList &allowed)
{
    const QString name = field.text;
    if (allowed.contains(name))
        return name;
    return fail(QStringLiteral("%1: \"%2\" is none of %3")
                    .arg(field.name, name, QStringLiteral("\"%1\"").arg(allowed.join(u"\", \""))));
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

Result<void> applySavingField(SavingPresetValues &preset, const std::string &argument)
{
    const Result<FieldArgument> field = FieldArgument::parse(argument);
    if (!field)
        return tl::unexpected(field.error());
    if (field->name == QLatin1String("jpegQuality")) {
        bool isNumber = false;
        const int quality = field->text.toInt(&isNumber);
        if (!isNumber || quality < SavingPresetValues::kLowestQuality ||
            quality > SavingPresetValues::kHighestQuality)
            return fail(QStringLiteral("jpegQuality: a whole number from %1 to %2")
                            .arg(SavingPresetValues::kLowestQuality)
                            .arg(SavingPresetValues::kHighestQuality));
        preset.jpegQuality = quality;
        return {};
    }
    if (field->name == QLatin1String("tiffCompressionLZW")) {
        if (field->text != QLatin1String("true") && field->text != QLatin1String("false"))
            return fail(QStringLiteral("tiffCompressionLZW: true or false"));
        preset.tiffCompressionLZW = field->text == QLatin1String("true");
        return {};
    }
    QStringList formats = savingFormatNames();
    if (field->name == QLatin1String("imageFormat"))
        return formatName(*field, formats).map([&](const QString &name) { preset.imageFormat = name; });
    formats.removeAll(originalFormatName()); // "Original" cannot stand for itself
    if (field->name == QLatin1String("alternativeImageFormat"))
        return formatName(*field, formats).map([&](const QString &name) {
            preset.alternativeImageFormat = name;
        });
    return fail(QStringLiteral("there is no field \"%1\" of a saving preset; the fields are imageFormat, "
                               "alternativeImageFormat, jpegQuality and tiffCompressionLZW")
                    .arg(field->name));
}

} // namespace plexa

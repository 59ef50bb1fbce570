// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/fieldarguments.h"

#include "watermark/watermarkpicture.h"
#include "watermark/wpresetfields.h"
#include "watermark/wpresetvalues.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace plexa
{

namespace
{

constexpr int kLowestQuality = 40;
constexpr int kHighestQuality = 100;

Result<QString> formatName(const FieldArgument &field, const QStringList &allowed)
{
    const QString name = field.value.toString();
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
    const QString value = text.mid(equals + 1);
    // Only arrays and objects are whole documents, so the value is read as an element of one.
    const QJsonArray parsed = QJsonDocument::fromJson('[' + value.toUtf8() + ']').array();
    return FieldArgument{text.left(equals), parsed.size() == 1 ? parsed.first() : QJsonValue(value)};
}

Result<void> applyField(WPresetValues &values, const std::string &argument)
{
    const Result<FieldArgument> field = FieldArgument::parse(argument);
    if (!field)
        return tl::unexpected(field.error());
    if (field->name != QLatin1String("image"))
        return setField(values, field->name, field->value);
    Result<WatermarkPicture> picture = WatermarkPicture::load(field->value.toString());
    if (!picture)
        return tl::unexpected(picture.error());
    values.image = std::move(*picture);
    return {};
}

Result<void> applySavingField(SavingPreset &preset, const std::string &argument)
{
    const Result<FieldArgument> field = FieldArgument::parse(argument);
    if (!field)
        return tl::unexpected(field.error());
    if (field->name == QLatin1String("jpegQuality")) {
        const double quality = field->value.toDouble(-1);
        if (quality < kLowestQuality || quality > kHighestQuality || quality != static_cast<int>(quality))
            return fail(QStringLiteral("jpegQuality: a whole number from %1 to %2")
                            .arg(kLowestQuality)
                            .arg(kHighestQuality));
        preset.jpegQuality = static_cast<int>(quality);
        return {};
    }
    if (field->name == QLatin1String("tiffCompressionLZW")) {
        if (!field->value.isBool())
            return fail(QStringLiteral("tiffCompressionLZW: true or false"));
        preset.tiffCompressionLZW = field->value.toBool();
        return {};
    }
    QStringList formats = SavingPreset::supportedFileFormats();
    if (field->name == QLatin1String("imageFormat"))
        return formatName(*field, formats).map([&](const QString &name) { preset.imageFormat = name; });
    formats.removeLast(); // "Original" cannot stand for itself
    if (field->name == QLatin1String("alternativeImageFormat"))
        return formatName(*field, formats).map([&](const QString &name) {
            preset.alternativeImageFormat = name;
        });
    return fail(QStringLiteral("there is no field \"%1\" of a saving preset; the fields are imageFormat, "
                               "alternativeImageFormat, jpegQuality and tiffCompressionLZW")
                    .arg(field->name));
}

} // namespace plexa

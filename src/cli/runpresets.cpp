// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/runpresets.h"

#include "cli/fieldarguments.h"
#include "cli/messages.h"
#include "cli/presetselection.h"
#include "cli/saveoptions.h"
#include "cli/tokentexts.h"
#include "platform/alerts.h"
#include "presets/savingformats.h"
#include "saving/savingsettings.h"
#include "watermark/watermarkpicture.h"

#include <algorithm>

namespace plexa
{
namespace
{

constexpr int kQuality = 95;
const QString kQuickPresetName = QStringLiteral("Quick Preset");

/// Prints warnings.
class Notices final : public Alerts
{
public:
    AlertAnswer run(const Alert &alert) override
    {
        printMessage(QStringLiteral("%1 %2").arg(alert.title, alert.text));
        return {};
    }
};

/// Reports pieces that were probably meant as tokens, if an argument sets that field.
void reportTokens(const std::vector<std::string> &arguments, const char *field, const QStringList &pieces,
                  TokenUse use)
{
    const bool isSet = std::any_of(arguments.begin(), arguments.end(), [field](const std::string &argument) {
        return isForField(argument, field);
    });
    if (!isSet)
        return;
    for (const QString &notice : noticesAboutTokens(pieces, use))
        printMessage(QStringLiteral("%1: %2").arg(QLatin1StringView(field), notice));
}

/// Sets the fields of --set. A new picture makes an image watermark.
Result<void> setFields(WPresetValues &values, const SaveOptions &options, const FontCatalog &fonts)
{
    const WPresetValues before = values;
    for (const std::string &field : options.fields) {
        if (Result<void> applied = applyField(values, field, fonts); !applied)
            return applied;
    }
    if (values.type == before.type && values.image != before.image && !values.image.isNull())
        values.type = QStringLiteral("Image");
    if (values.type == QLatin1String("Image") && values.image.isNull() && !options.fields.empty())
        return fail(QStringLiteral("an image watermark needs a picture: give --image, or --set image=FILE"));
    return {};
}

Result<WPresetValues> quickPreset(const SaveOptions &options, const FontCatalog &fonts)
{
    WPresetValues values = WPresetValues::forNewPreset(fonts);
    values.name = kQuickPresetName;
    if (options.text) {
        values.type = QStringLiteral("Text");
        const Result<QStringList> pieces =
            piecesOfText(QString::fromStdString(*options.text), TokenUse::Watermark);
        if (!pieces)
            return fail(QStringLiteral("--text: ") + pieces.error().text);
        values.textTokens = *pieces;
    }
    if (!options.image.empty()) {
        Result<WatermarkPicture> picture = WatermarkPicture::load(QString::fromStdString(options.image));
        if (!picture)
            return tl::unexpected(picture.error());
        values.type = QStringLiteral("Image");
        values.image = std::move(*picture);
    }
    return setFields(values, options, fonts).map([&] { return values; });
}

/// The name of a format in any letter case, or a suffix of it; else the text.
std::string formatNamed(const std::string &text)
{
    const QString given = QString::fromStdString(text);
    const QString type = savingTypeForExtension(given);
    for (const QString &name : savingFormatNames()) {
        const bool isSame = name.compare(given, Qt::CaseInsensitive) == 0;
        if (isSame || (!type.isEmpty() && savingTypeForExtension(name) == type))
            return name.toStdString();
    }
    return text;
}

/// Sets what --save-set and its short forms set.
Result<void> setSavingFields(SavingPresetValues &preset, const SaveOptions &options)
{
    std::vector<std::string> fields = options.savingFields;
    if (!options.format.empty())
        fields.push_back("imageFormat=" + formatNamed(options.format));
    if (options.quality != 0)
        fields.push_back("jpegQuality=" + std::to_string(options.quality));
    for (const std::string &field : fields) {
        if (Result<void> applied = applySavingField(preset, field); !applied)
            return applied;
    }
    reportTokens(options.savingFields, "filenameTokens", preset.filenameTokens, TokenUse::CopyName);
    if (!options.name.empty()) {
        const Result<QStringList> pieces =
            piecesOfText(QString::fromStdString(options.name), TokenUse::CopyName);
        if (!pieces)
            return fail(QStringLiteral("--name: ") + pieces.error().text);
        if (std::any_of(pieces->begin(), pieces->end(),
                        [](const QString &piece) { return piece.contains(u'/'); }))
            return fail(
                QStringLiteral("--name: a slash cannot be part of a name; --output gives the folder"));
        preset.filenameTokens = *pieces;
    }
    if (setsQuality(options) && preset.hideJPEGQuality())
        return fail(QStringLiteral("--quality has no effect on %1").arg(preset.imageFormat));
    return {};
}

} // namespace

Result<std::vector<AppliedPreset>> watermarksOf(const SaveOptions &options, const FontCatalog &fonts)
{
    std::vector<AppliedPreset> watermarks;
    if (isPresetsMode(options)) {
        Result<std::vector<AppliedPreset>> applied = appliedPresets(options);
        if (!applied)
            return applied;
        watermarks = std::move(*applied);
        for (AppliedPreset &watermark : watermarks) {
            if (Result<void> set = setFields(watermark.values, options, fonts); !set)
                return tl::unexpected(set.error());
        }
    } else {
        Result<WPresetValues> values = quickPreset(options, fonts);
        if (!values)
            return tl::unexpected(values.error());
        watermarks.push_back({nullptr, std::move(*values)});
    }
    const auto field = std::find_if(options.fields.begin(), options.fields.end(), isForText);
    const bool hasText = std::any_of(watermarks.begin(), watermarks.end(), [](const AppliedPreset &mark) {
        return mark.values.type != QLatin1String("Image");
    });
    if (!hasText && field != options.fields.end())
        return fail(QStringLiteral("--set %1 has no effect on a picture")
                        .arg(QString::fromStdString(field->substr(0, field->find('=')))));
    if (options.combine && watermarks.size() == 1)
        return fail(QStringLiteral("--combine has no effect on a single watermark"));
    reportTokens(options.fields, "textTokens", watermarks.front().values.textTokens, TokenUse::Watermark);
    return watermarks;
}

SavingPresetValues plainSavingPreset()
{
    SavingPresetValues preset;
    preset.imageFormat = originalFormatName();
    preset.jpegQuality = kQuality;
    preset.filenameTokens = {QStringLiteral("filename")};
    return preset;
}

Result<SavingPresetValues> savingPresetOf(const SaveOptions &options)
{
    SavingPresetValues preset = plainSavingPreset();
    // The copies of a photo differ in this part of their names.
    if (isPresetsMode(options) && !options.combine)
        preset.filenameTokens += {QStringLiteral("-"), QStringLiteral("watermark preset name")};
    Result<std::optional<SavingPresetValues>> chosen = chosenSavingPreset(options);
    if (!chosen)
        return tl::unexpected(chosen.error());
    if (*chosen)
        preset = std::move(**chosen);
    if (Result<void> set = setSavingFields(preset, options); !set)
        return tl::unexpected(set.error());
    Notices notices;
    completeFilenameTokens(preset, notices);
    return checkSavingPreset(preset).map([&] { return preset; });
}

} // namespace plexa

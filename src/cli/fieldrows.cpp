// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/fieldrows.h"

#include "cli/messages.h"
#include "cli/runpresets.h"
#include "metadata/imagemetadataproperties.h"

namespace plexa
{

namespace
{

FieldKind kindOf(MetadataKind kind)
{
    if (kind == MetadataKind::Number)
        return FieldKind::Float;
    const bool isWhole = kind == MetadataKind::Integer || kind == MetadataKind::IntegerList;
    return isWhole ? FieldKind::Integer : FieldKind::String;
}

} // namespace

std::vector<FieldRow> allFields(const FontCatalog &fonts)
{
    std::vector<FieldRow> rows;
    const WPresetValues watermark = WPresetValues::forNewPreset(fonts);
    for (const WPresetField &field : wPresetFields()) {
        if (field.kind == FieldKind::SavingPreset) // cannot be set
            continue;
        rows.push_back({field.name, FieldRow::Owner::Watermark, field.kind, limitsOf(field),
                        valueAsJson(field.value(watermark)), false});
        rows.back().isOfMachine = field.id == FieldId::Font || field.id == FieldId::TextTokens;
        if (field.id == FieldId::Font)
            rows.back().limits.choices = fonts.postScriptNames();
    }
    const SavingPresetValues saving = plainSavingPreset();
    for (const SavingPresetField &field : savingPresetFields())
        rows.push_back({field.name, FieldRow::Owner::SavingPreset, field.kind, field.limits(),
                        valueAsJson(field.value(saving)), false});
    for (const MetadataPropertyRow &field : metadataProperties()) {
        if (!field.isEditable)
            continue;
        FieldLimits limits;
        limits.meaning = QString::fromUtf8(field.label);
        if (field.kind == MetadataKind::DateTime)
            limits.meaning += QStringLiteral(", as 2024-12-31 23:59:59");
        else if (field.key == kCGImagePropertyIPTCKeywords)
            limits.meaning += QStringLiteral(", separated by commas");
        rows.push_back({QLatin1StringView(field.name), FieldRow::Owner::Metadata, kindOf(field.kind), limits,
                        QJsonValue(), false});
    }
    return rows;
}

QString nameOf(FieldKind kind)
{
    switch (kind) {
    case FieldKind::Strings:
        return QStringLiteral("list of texts");
    case FieldKind::Integer:
        return QStringLiteral("whole number");
    case FieldKind::Float:
        return QStringLiteral("number");
    case FieldKind::Boolean:
        return QStringLiteral("true or false");
    case FieldKind::Color:
        return QStringLiteral("color, #rrggbb or #rrggbbaa");
    case FieldKind::Image:
        return QStringLiteral("path of a picture");
    case FieldKind::String:
    case FieldKind::SavingPreset:
        break;
    }
    return QStringLiteral("text");
}

QString descriptionOf(const FieldRow &field, FieldText place)
{
    const FieldLimits &limits = field.limits;
    QString text = nameOf(field.kind);
    if (field.name == QLatin1StringView("font") && place != FieldText::Alone)
        text = QStringLiteral("PostScript name of a font (\"plexa-cli fields font\" lists them)");
    else if (!limits.choices.isEmpty())
        text += QStringLiteral(", one of: ") + limits.choices.join(QLatin1String(", "));
    if (limits.isBounded())
        text += QStringLiteral(" from %1 to %2").arg(limits.lowest, 0, 'f', 0).arg(limits.highest, 0, 'f', 0);
    if (!limits.unit.isEmpty())
        text += (limits.unit.endsWith(QLatin1StringView("Unit")) ? QStringLiteral(", in ")
                                                                 : QStringLiteral(", ")) +
                limits.unit;
    if (!limits.meaning.isEmpty())
        text += QStringLiteral(" (%1)").arg(limits.meaning);
    if (field.owner == FieldRow::Owner::Metadata || (field.isOfMachine && place == FieldText::Manual))
        return text;
    return text + QStringLiteral("; default: ") +
           (field.initial.isNull() ? QStringLiteral("none") : QString::fromUtf8(jsonText(field.initial)));
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/listcommands.h"
#include "cli/messages.h"
#include "cli/runpresets.h"
#include "cli/suggestions.h"
#include "cli/wrappedtext.h"
#include "platform/fontcatalog.h"
#include "presets/savingpresetfields.h"

#include <QJsonArray>
#include <QJsonObject>

#include <CLI/CLI.hpp>

#include <algorithm>

namespace plexa
{
namespace
{

/// One field of either kind of preset.
struct FieldRow {
    QString name;
    bool isOfWatermark = true;
    FieldKind kind = FieldKind::String;
    FieldLimits limits;
    QJsonValue initial;
};

std::vector<FieldRow> allFields(const FontCatalog &fonts)
{
    std::vector<FieldRow> rows;
    const WPresetValues watermark = WPresetValues::forNewPreset(fonts);
    for (const WPresetField &field : wPresetFields()) {
        if (field.kind == FieldKind::SavingPreset) // cannot be set
            continue;
        rows.push_back({field.name, true, field.kind, limitsOf(field), valueAsJson(field.value(watermark))});
        if (field.id == FieldId::Font)
            rows.back().limits.choices = fonts.postScriptNames();
    }
    const SavingPresetValues saving = plainSavingPreset();
    for (const SavingPresetField &field : savingPresetFields())
        rows.push_back({field.name, false, field.kind, field.limits(), valueAsJson(field.value(saving))});
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

QString descriptionOf(const FieldRow &field, bool isAlone)
{
    const FieldLimits &limits = field.limits;
    QString text = nameOf(field.kind);
    if (field.name == QLatin1StringView("font") && !isAlone)
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
    return text + QStringLiteral("; default: ") +
           (field.initial.isNull() ? QStringLiteral("none") : QString::fromUtf8(jsonText(field.initial)));
}

QJsonObject jsonOf(const FieldRow &field)
{
    const FieldLimits &limits = field.limits;
    const auto bound = [&](double number) { return limits.isBounded() ? QJsonValue(number) : QJsonValue(); };
    return {{QStringLiteral("name"), field.name},
            {QStringLiteral("preset"),
             field.isOfWatermark ? QStringLiteral("watermark") : QStringLiteral("saving")},
            {QStringLiteral("kind"), nameOf(field.kind)},
            {QStringLiteral("unit"), orNull(limits.unit)},
            {QStringLiteral("lowest"), bound(limits.lowest)},
            {QStringLiteral("highest"), bound(limits.highest)},
            {QStringLiteral("meaning"), orNull(limits.meaning)},
            {QStringLiteral("values"), limits.choices.isEmpty()
                                           ? QJsonValue()
                                           : QJsonValue(QJsonArray::fromStringList(limits.choices))},
            {QStringLiteral("default"), field.initial}};
}

/// The fields of these names, of either preset; none if a name is not one of a field.
std::vector<FieldRow> namedFields(const std::vector<FieldRow> &all, const std::vector<std::string> &names)
{
    std::vector<FieldRow> named;
    for (const std::string &given : names) {
        const QString name = QString::fromStdString(given);
        const std::size_t before = named.size();
        std::copy_if(all.begin(), all.end(), std::back_inserter(named),
                     [&](const FieldRow &field) { return field.name == name; });
        if (named.size() == before) {
            QStringList names;
            for (const FieldRow &field : all)
                names.append(field.name);
            printMessage(QStringLiteral("there is no field \"%1\"").arg(name) +
                         didYouMean(name, names, QStringLiteral("; \"plexa-cli fields\" lists the fields")));
            return {};
        }
    }
    return named;
}

} // namespace

CLI::App *addFieldsCommand(CLI::App &program, ListOptions &options)
{
    CLI::App *command = program.add_subcommand(
        "fields", "List the fields of --set and --save-set: kinds, allowed values, defaults");
    command->add_flag("--json", options.json, "Print an array with an object for each field");
    command->add_option("NAME", options.names, "These fields only");
    return command;
}

int runFields(const ListOptions &options)
{
    const FontCatalog fonts;
    std::vector<FieldRow> fields = allFields(fonts);
    if (!options.names.empty())
        fields = namedFields(fields, options.names);
    if (fields.empty())
        return kWrongUsage;
    QJsonArray objects;
    QString text;
    constexpr qsizetype kColumn = 26;
    for (const FieldRow &field : fields) {
        objects.append(jsonOf(field));
        if (options.names.empty() && field.name == QLatin1StringView("name"))
            text += field.isOfWatermark
                        ? QStringLiteral("Fields of a watermark (--set FIELD=VALUE):\n")
                        : QStringLiteral("\nFields of a saving preset (--save-set FIELD=VALUE):\n");
        text += wrappedText(QStringLiteral("  ") + field.name, descriptionOf(field, !options.names.empty()),
                            kColumn);
    }
    if (options.json)
        printJson(objects);
    else
        printLine(stdout, text.chopped(1));
    return kAllDone;
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/fieldrows.h"
#include "cli/listcommands.h"
#include "cli/messages.h"
#include "cli/suggestions.h"
#include "cli/wrappedtext.h"
#include "platform/fontcatalog.h"

#include <QJsonArray>
#include <QJsonObject>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <optional>

namespace plexa
{
namespace
{

QJsonObject jsonOf(const FieldRow &field)
{
    const FieldLimits &limits = field.limits;
    const auto bound = [&](double number) { return limits.isBounded() ? QJsonValue(number) : QJsonValue(); };
    return {
        {QStringLiteral("name"), field.name},
        {QStringLiteral("preset"),
         QStringList{QStringLiteral("watermark"), QStringLiteral("saving"), QStringLiteral("metadata")}.at(
             static_cast<int>(field.owner))},
        {QStringLiteral("kind"), nameOf(field.kind)},
        {QStringLiteral("unit"), orNull(limits.unit)},
        {QStringLiteral("lowest"), bound(limits.lowest)},
        {QStringLiteral("highest"), bound(limits.highest)},
        {QStringLiteral("meaning"), orNull(limits.meaning)},
        {QStringLiteral("values"),
         limits.choices.isEmpty() ? QJsonValue() : QJsonValue(QJsonArray::fromStringList(limits.choices))},
        {QStringLiteral("default"), field.initial}};
}

QString titleOf(FieldRow::Owner owner)
{
    switch (owner) {
    case FieldRow::Owner::Watermark:
        return QStringLiteral("Fields of a watermark (--set FIELD=VALUE):\n");
    case FieldRow::Owner::SavingPreset:
        return QStringLiteral("\nFields of a saving preset (--save-set FIELD=VALUE):\n");
    case FieldRow::Owner::Metadata:
        break;
    }
    return QStringLiteral("\nFields of the metadata (--meta FIELD=VALUE):\n");
}

/// The fields of these names; none if a name is not one of a field.
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
        "fields", "List the fields of --set, --save-set and --meta: kinds, allowed values, defaults");
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
    std::optional<FieldRow::Owner> owner;
    constexpr qsizetype kColumn = 26;
    for (const FieldRow &field : fields) {
        objects.append(jsonOf(field));
        if (options.names.empty() && owner != field.owner)
            text += titleOf(field.owner);
        owner = field.owner;
        text += wrappedText(
            QStringLiteral("  ") + field.name,
            descriptionOf(field, options.names.empty() ? FieldText::InList : FieldText::Alone), kColumn);
    }
    if (options.json)
        printJson(objects);
    else
        printLine(stdout, text.chopped(1));
    return kAllDone;
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/completion.h"

#include "cli/fieldrows.h"
#include "cli/listcommands.h"
#include "cli/messages.h"
#include "cli/presetfiles.h"
#include "cli/saveoptions.h"
#include "metadata/metadataclearings.h"
#include "platform/fontcatalog.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <CLI/CLI.hpp>

#include <algorithm>

namespace plexa
{
namespace
{

using Words = QList<Completion>;

Words commandsOf(const CLI::App &program)
{
    Words words;
    for (const CLI::App *command : program.get_subcommands([](const CLI::App *) { return true; }))
        words.append({QString::fromStdString(command->get_name()),
                      QString::fromStdString(command->get_description())});
    return words;
}

QStringList namesOf(const CLI::Option &option)
{
    QStringList names;
    for (const std::string &name : option.get_lnames())
        names.append(QLatin1String("--") + QString::fromStdString(name));
    for (const std::string &name : option.get_snames())
        names.append(u'-' + QString::fromStdString(name));
    return names;
}

std::vector<const CLI::Option *> shownOptionsOf(const CLI::App &command)
{
    return command.get_options(
        [](const CLI::Option *option) { return !option->get_positional() && !option->get_group().empty(); });
}

Words optionsOf(const CLI::App &command)
{
    Words words;
    for (const CLI::Option *option : shownOptionsOf(command))
        for (const QString &name : namesOf(*option))
            words.append({name, QString::fromStdString(option->get_description())});
    return words;
}

/// The option of that name if it needs a value; else null.
const CLI::Option *optionWithValue(const CLI::App &command, const QString &name)
{
    for (const CLI::Option *option : shownOptionsOf(command))
        if (!option->get_type_name().empty() && namesOf(*option).contains(name))
            return option;
    return nullptr;
}

Words wordsOf(const QStringList &texts)
{
    Words words;
    for (const QString &text : texts)
        words.append({text, {}});
    return words;
}

/// "type=Text", "type=Image"; a number with its meaning.
Words valuesOf(const FieldRow &field)
{
    Words words = wordsOf(field.limits.choices);
    if (field.kind == FieldKind::Boolean)
        words = wordsOf({QStringLiteral("true"), QStringLiteral("false")});
    static const QRegularExpression numbered(QStringLiteral("^(\\d+) (.+)$"));
    for (const QString &part : field.limits.meaning.split(QStringLiteral(", ")))
        if (const auto match = numbered.match(part); match.hasMatch())
            words.append({match.captured(1), match.captured(2)});
    for (Completion &word : words)
        word.text.prepend(field.name + u'=');
    return words;
}

/// "FIELD=", or the values of the field that `current` names.
Words fieldArguments(const QString &current, FieldRow::Owner owner)
{
    const FontCatalog fonts;
    Words words;
    for (const FieldRow &field : allFields(fonts)) {
        if (field.owner != owner)
            continue;
        if (current.startsWith(field.name + u'='))
            return valuesOf(field);
        words.append({field.name + u'=', descriptionOf(field, FieldText::InList)});
    }
    return words;
}

Words fieldNames()
{
    const FontCatalog fonts;
    Words words;
    for (const FieldRow &field : allFields(fonts))
        words.append({field.name, descriptionOf(field, FieldText::InList)});
    return words;
}

/// The text with each token in place of the brace that is open at its end.
Words textsWithTokens(const QString &text, bool isCopyName)
{
    static const QRegularExpression openBrace(QStringLiteral("^((?:[^{]|\\{\\{|\\{[^{}]*\\})*)\\{[^{}]*$"));
    const QRegularExpressionMatch match = openBrace.match(text);
    Words words;
    if (!match.hasMatch())
        return words;
    for (const TokenRow &token : allTokens())
        if (isCopyName || !token.isForNamesOnly)
            words.append({match.captured(1) + u'{' + token.name + u'}', token.example});
    return words;
}

/// The names in the file that the words name, or of the user's own presets, or of the examples.
Words presetNames(const QStringList &words, const QString &fileOption, PresetsStore::Kind kind)
{
    const qsizetype at = words.indexOf(fileOption);
    const QString path = at >= 0 && at + 1 < words.size()
                             ? words[at + 1]
                             : PresetsStore::listOrExamplesFile(kind, PresetsStore::Places::own());
    if (!path.startsWith(u':') && !QFileInfo(path).isFile()) // a pipe would have to be waited for
        return {};
    const Result<PresetsFile> file = presetsIn(path, kind);
    if (!file)
        return {};
    return wordsOf(kind == PresetsStore::Kind::Watermark ? plainNamesOf(file->wPresets)
                                                         : plainNamesOf(file->savingPresets));
}

Completions valuesOf(const CLI::Option &option, const QStringList &words)
{
    const QString &current = words.last();
    const QString name = namesOf(option).first();
    const std::string type = option.get_type_name();
    if (type == "FILE" || type == "OUT")
        return {Completions::Paths::Files, {}};
    if (type == "DIR")
        return {Completions::Paths::Folders, {}};
    Completions found;
    if (name == QLatin1StringView("--set"))
        found.words = fieldArguments(current, FieldRow::Owner::Watermark);
    else if (name == QLatin1StringView("--save-set"))
        found.words = fieldArguments(current, FieldRow::Owner::SavingPreset);
    else if (name == QLatin1StringView("--meta"))
        found.words = fieldArguments(current, FieldRow::Owner::Metadata);
    else if (name == QLatin1StringView("--text") || name == QLatin1StringView("--name"))
        found.words = textsWithTokens(current, name == QLatin1StringView("--name"));
    else if (name == QLatin1StringView("--apply"))
        found.words = presetNames(words, QStringLiteral("--wpresets"), PresetsStore::Kind::Watermark);
    else if (name == QLatin1StringView("--saving-preset"))
        found.words = presetNames(words, QStringLiteral("--saving-presets"), PresetsStore::Kind::Saving);
    else if (name == QLatin1StringView("--format"))
        found.words = wordsOf(savingPresetField(SavingField::ImageFormat).limits().choices);
    else if (name == QLatin1StringView("--clear"))
        for (const MetadataClearingRow &row : metadataClearings())
            found.words.append({row.name, {}});
    else if (name == QLatin1StringView("--conflict"))
        for (const std::string &choice : conflictChoices())
            found.words.append({QString::fromStdString(choice), {}});
    return found;
}

Completions unfiltered(const CLI::App &program, const QStringList &words)
{
    const QString &current = words.last();
    const CLI::App *command = nullptr;
    for (const CLI::App *each : program.get_subcommands([](const CLI::App *) { return true; }))
        if (words.size() > 1 && words.first() == QString::fromStdString(each->get_name()))
            command = each;
    if (!command)
        return {Completions::Paths::None,
                current.startsWith(u'-') ? optionsOf(program) : commandsOf(program)};
    const bool isAfterOptions = words.first(words.size() - 1).contains(QStringLiteral("--"));
    if (const CLI::Option *option = optionWithValue(*command, words[words.size() - 2]);
        option && !isAfterOptions)
        return valuesOf(*option, words);
    if (current.startsWith(u'-') && !isAfterOptions)
        return {Completions::Paths::None, optionsOf(*command)};
    if (command->get_name() == "fields")
        return {Completions::Paths::None, fieldNames()};
    return {command->get_name() == "tokens" ? Completions::Paths::None : Completions::Paths::Files, {}};
}

} // namespace

Completions completionsOf(const CLI::App &program, const QStringList &words)
{
    if (words.isEmpty())
        return {};
    Completions completions = unfiltered(program, words);
    completions.words.removeIf(
        [&](const Completion &word) { return !word.text.startsWith(words.last(), Qt::CaseInsensitive); });
    return completions;
}

void printCompletions(const Completions &completions)
{
    const QStringList kinds{QStringLiteral("none"), QStringLiteral("files"), QStringLiteral("folders")};
    printLine(stdout, kinds[static_cast<int>(completions.paths)]);
    for (const Completion &word : completions.words)
        std::fputs((onOneLine(word.text) + u'\t' + onOneLine(word.description) + u'\n').toUtf8().constData(),
                   stdout);
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/manualpage.h"

#include "cli/fieldrows.h"
#include "cli/listcommands.h"
#include "platform/applicationname.h"
#include "platform/fontcatalog.h"

#include <QStringList>

#include <CLI/CLI.hpp>

namespace plexa
{
namespace
{

/// The text with the characters that man(7) would change or take for a request.
QString escaped(QString text)
{
    text.replace(u'\\', QLatin1String("\\e"));
    for (const auto &[character, name] :
         {std::pair(u'-', "\\-"), {u'\'', "\\(aq"}, {u'`', "\\(ga"}, {u'^', "\\(ha"}, {u'~', "\\(ti"}})
        text.replace(QChar(character), QLatin1String(name));
    return text.startsWith(u'.') ? QLatin1String("\\&") + text : text;
}

QString escaped(const std::string &text)
{
    return escaped(QString::fromStdString(text));
}

QString bold(const QString &text)
{
    return QLatin1String("\\fB") + text + QLatin1String("\\fR");
}

QString italic(const QString &text)
{
    return QLatin1String("\\fI") + text + QLatin1String("\\fR");
}

QString section(const char *title)
{
    return QStringLiteral(".SH %1\n").arg(QLatin1StringView(title));
}

/// A term and what it means.
QString entry(const QString &term, const QString &text)
{
    return QStringLiteral(".TP\n%1\n%2\n").arg(term, text);
}

/// The names of an option and its value: "-o, --output DIR".
QString termOf(const CLI::Option &option)
{
    if (option.get_positional())
        return italic(escaped(option.get_name(true, false)));
    QStringList names;
    for (const std::string &name : option.get_snames())
        names.append(bold(escaped("-" + name)));
    for (const std::string &name : option.get_lnames())
        names.append(bold(escaped("--" + name)));
    const QString value = escaped(option.get_type_name());
    return names.join(QLatin1String(", ")) + (value.isEmpty() ? QString() : u' ' + italic(value));
}

QString synopsisOf(const CLI::App &command)
{
    QString line = QStringLiteral(".B plexa\\-cli %1\n[\\fIOPTION\\fR]...").arg(escaped(command.get_name()));
    for (const CLI::Option *argument :
         command.get_options([](const CLI::Option *option) { return option->get_positional(); })) {
        QString name = italic(escaped(argument->get_name(true, false)));
        if (argument->get_expected_max() > 1)
            name += QLatin1String("...");
        line += u' ' + (argument->get_required() ? name : u'[' + name + u']');
    }
    return line + u'\n';
}

QString entriesOf(const std::vector<const CLI::Option *> &options)
{
    QString text;
    for (const CLI::Option *option : options)
        text += entry(termOf(*option), escaped(option->get_description()));
    return text;
}

/// The arguments, then the groups of options with their titles.
QString optionsOf(const CLI::App &command)
{
    QString text =
        entriesOf(command.get_options([](const CLI::Option *option) { return option->get_positional(); }));
    for (const std::string &group : command.get_groups()) {
        const auto options = command.get_options([&](const CLI::Option *option) {
            return option->get_group() == group && !option->get_positional();
        });
        if (group.empty() || options.empty())
            continue;
        if (group != "Options")
            text += QStringLiteral(".PP\n") + bold(escaped(group) + u':') + u'\n';
        text += entriesOf(options);
    }
    return text;
}

/// Paragraphs, and examples, which are the lines that begin with two blanks.
QString footerOf(const CLI::App &command)
{
    QString text;
    bool isExample = false;
    const auto endExample = [&] {
        text += QLatin1String(std::exchange(isExample, false) ? ".fi\n.RE\n" : "");
    };
    for (const QString &line : QString::fromStdString(command.get_footer()).split(u'\n')) {
        if (line.startsWith(QLatin1String("  "))) {
            text += QLatin1String(std::exchange(isExample, true) ? "" : ".PP\n.RS 2\n.nf\n");
            text += escaped(line.mid(2)) + u'\n';
            continue;
        }
        endExample();
        text += line.isEmpty() ? QStringLiteral(".PP\n") : escaped(line) + u'\n';
    }
    endExample();
    return text;
}

QString commandsOf(const CLI::App &program)
{
    QString text;
    for (const CLI::App *command : program.get_subcommands([](const CLI::App *) { return true; })) {
        text += QStringLiteral(".SS %1\n%2.\n")
                    .arg(escaped(command->get_name()), escaped(command->get_description()));
        text += optionsOf(*command);
        if (const QString footer = footerOf(*command); !footer.trimmed().isEmpty())
            text += QStringLiteral(".PP\n") + footer;
    }
    return text;
}

QString fieldsOf(FieldRow::Owner owner)
{
    const FontCatalog fonts;
    QString text;
    for (const FieldRow &field : allFields(fonts)) {
        if (field.owner == owner)
            text += entry(bold(escaped(field.name)), escaped(descriptionOf(field, FieldText::Manual)));
    }
    return text;
}

QString tokens(bool areForNamesOnly)
{
    QString text;
    for (const TokenRow &token : allTokens()) {
        if (token.isForNamesOnly == areForNamesOnly)
            text += entry(bold(u'{' + escaped(token.name) + u'}'), escaped(token.example));
    }
    return text;
}

} // namespace

QString manualPage(const CLI::App &program)
{
    const QString name = applicationName();
    const QString start = QStringLiteral(".TH PLEXA\\-CLI 1 \"\" \"%1 %2\" \"User Commands\"\n.nh\n")
                              .arg(name, applicationVersion()) +
                          section("NAME") +
                          QStringLiteral("plexa\\-cli \\- watermark photographs in batches\n");
    QString synopsis = section("SYNOPSIS");
    for (const CLI::App *command : program.get_subcommands([](const CLI::App *) { return true; }))
        synopsis += synopsisOf(*command) + QLatin1String(".br\n");
    return start + synopsis.chopped(4) + section("DESCRIPTION") +
           QStringLiteral(
               "Puts a text or a picture on photos and writes copies of them, without a window. Each photo "
               "completes the tokens of the text from its own metadata. Results go to the standard output, "
               "messages to the standard error.\n") +
           section("OPTIONS") + optionsOf(program) + section("COMMANDS") + commandsOf(program) +
           section("FIELDS OF A WATERMARK") + QStringLiteral("For \\fB\\-\\-set\\fR.\n") +
           fieldsOf(FieldRow::Owner::Watermark) + section("FIELDS OF A SAVING PRESET") +
           QStringLiteral("For \\fB\\-\\-save\\-set\\fR.\n") + fieldsOf(FieldRow::Owner::SavingPreset) +
           section("FIELDS OF THE METADATA") + QStringLiteral("For \\fB\\-\\-meta\\fR.\n") +
           fieldsOf(FieldRow::Owner::Metadata) + section("TOKENS") +
           QStringLiteral("For \\fB\\-\\-text\\fR and \\fB\\-\\-name\\fR, each with an example.\n") +
           tokens(false) + QStringLiteral(".PP\nFor \\fB\\-\\-name\\fR only.\n") + tokens(true) +
           section("FILES") +
           entry(
               italic(escaped(QStringLiteral("~/.local/share/%1/%2/").arg(companyName(), name))),
               QStringLiteral("Your own watermark presets and saving presets, the same as in the window.")) +
           section("SEE ALSO") + QStringLiteral(".BR plexa (1)\n");
}

} // namespace plexa

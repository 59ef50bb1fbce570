// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/helpformat.h"

#include "cli/wrappedtext.h"

#include <CLI/CLI.hpp>

namespace plexa
{
namespace
{

constexpr qsizetype kDescriptionColumn = 26;

std::string row(const std::string &start, const std::string &text)
{
    return wrappedText(QString::fromStdString(start), QString::fromStdString(text), kDescriptionColumn)
        .toStdString();
}

class HelpFormat final : public CLI::Formatter
{
    std::string make_group(std::string group, bool isPositional,
                           std::vector<const CLI::Option *> options) const override
    {
        std::string text = group + ":\n";
        for (const CLI::Option *option : options)
            text += make_option(option, isPositional);
        return text;
    }

    std::string make_positionals(const CLI::App *app) const override
    {
        const std::string arguments = Formatter::make_positionals(app);
        return arguments.empty() ? "\n" : '\n' + arguments + '\n';
    }

    std::string make_option(const CLI::Option *option, bool isPositional) const override
    {
        if (isPositional)
            return row("  " + option->get_name(true, false), option->get_description());
        std::string names;
        for (const std::string &name : option->get_snames())
            names += (names.empty() ? "-" : ", -") + name;
        if (names.empty())
            names = "   ";
        for (const std::string &name : option->get_lnames())
            names += (names == "   " ? " --" : ", --") + name;
        if (!option->get_type_name().empty())
            names += ' ' + option->get_type_name();
        return row("  " + names, option->get_description());
    }

    std::string make_subcommand(const CLI::App *command) const override
    {
        return row("  " + command->get_name(), command->get_description());
    }
};

} // namespace

std::shared_ptr<CLI::FormatterBase> helpFormat()
{
    auto format = std::make_shared<HelpFormat>();
    format->label("Positionals", "Arguments");
    format->label("SUBCOMMAND", "COMMAND");
    return format;
}

} // namespace plexa

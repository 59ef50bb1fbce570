// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/usageerrors.h"

#include <QStringList>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>

namespace plexa
{
namespace
{

QString commandNames(const CLI::App &program)
{
    QStringList names;
    for (const CLI::App *command : program.get_subcommands([](const CLI::App *) { return true; }))
        names.append(QString::fromStdString(command->get_name()));
    return names.join(QLatin1String(", "));
}

/// The two options of "A excludes B".
QString related(const QString &text, const QString &relation, const QString &ourWords)
{
    const qsizetype at = text.indexOf(relation);
    return ourWords.arg(text.left(at), text.mid(at + relation.size()));
}

QString reasonOf(const CLI::App &program, const CLI::App *command, const CLI::ParseError &error)
{
    const std::string kind = error.get_name();
    const QString text = QString::fromUtf8(error.what());
    // Its name is that of the command.
    const bool isExtra = dynamic_cast<const CLI::ExtrasError *>(&error) != nullptr;
    const QString extra = isExtra ? text.section(QStringLiteral(": "), 1)
                                  : QString::fromStdString(CLI::detail::join(program.remaining(), " "));
    if (extra.startsWith(u'-') && (isExtra || !command))
        return QStringLiteral("there is no option %1").arg(extra);
    if (!command && extra.isEmpty())
        return QStringLiteral("there is no command; the commands are %1").arg(commandNames(program));
    if (!command)
        return QStringLiteral("there is no command \"%1\"; the commands are %2")
            .arg(extra, commandNames(program));
    if (isExtra)
        return QStringLiteral("\"%1\" is one argument too many").arg(extra);
    if (kind == "ExcludesError")
        return related(text, QStringLiteral(" excludes "),
                       QStringLiteral("%1 and %2 cannot be given together"));
    if (kind == "RequiresError")
        return related(text, QStringLiteral(" requires "), QStringLiteral("%1 needs %2"));
    if (kind == "ArgumentMismatch") {
        const QString option = text.section(u':', 0, 0);
        return text.contains(QLatin1StringView("missing"))
                   ? QStringLiteral("%1 needs a value").arg(option)
                   : QStringLiteral("%1 is given more than once").arg(option);
    }
    return text;
}

} // namespace

QString usageErrorText(const CLI::App &program, const CLI::ParseError &error)
{
    const std::vector<CLI::App *> commands = program.get_subcommands();
    const CLI::App *const command = commands.empty() ? nullptr : commands.front();
    QString reason = reasonOf(program, command, error);
    const QString name = command ? QString::fromStdString(command->get_name()) + u' ' : QString();
    return QStringLiteral("%1; see \"plexa-cli %2--help\"").arg(reason, name);
}

CLI::Validator wholeNumber(int lowest, int highest)
{
    return CLI::Validator(
        [lowest, highest](const std::string &text) {
            int number = 0;
            const char *const end = text.data() + text.size();
            const auto [stop, fault] = std::from_chars(text.data(), end, number);
            if (fault == std::errc() && stop == end && number >= lowest && number <= highest)
                return std::string();
            return "\"" + text + "\" is not a whole number from " + std::to_string(lowest) + " to " +
                   std::to_string(highest);
        },
        std::string());
}

CLI::Validator oneOf(const std::vector<std::string> &values)
{
    return CLI::Validator(
        [values](const std::string &text) {
            if (std::find(values.begin(), values.end(), text) != values.end())
                return std::string();
            return "\"" + text + "\" is none of " + CLI::detail::join(values, ", ");
        },
        std::string());
}

} // namespace plexa

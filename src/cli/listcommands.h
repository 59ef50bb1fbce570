// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

#include <string>
#include <vector>

namespace CLI
{
class App;
}

namespace plexa
{

/// The command line of "plexa-cli fields" and "plexa-cli tokens".
struct ListOptions {
    std::vector<std::string> names; ///< of fields; none: all
    bool json = false;
};

/// A token with the text that it gives for a photo with all facts.
struct TokenRow {
    QString name;
    QString example;
    bool isForNamesOnly;
};

std::vector<TokenRow> allTokens();

/// Declare the sub-commands; `options` outlives the parsing.
CLI::App *addFieldsCommand(CLI::App &program, ListOptions &options);
CLI::App *addTokensCommand(CLI::App &program, ListOptions &options);

/// Prints the fields of presets with their kinds, allowed values and defaults. @return the exit status
int runFields(const ListOptions &options);

/// Prints the tokens, each with an example. @return the exit status
int runTokens(const ListOptions &options);

} // namespace plexa

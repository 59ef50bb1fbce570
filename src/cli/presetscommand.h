// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>

namespace CLI
{
class App;
}

namespace plexa
{

/// The command line of "plexa-cli presets".
struct PresetsOptions {
    std::string file;      ///< empty: the user's own presets of both kinds; "-" is the standard input
    std::string convertTo; ///< empty: nothing is written; "-" is the standard output
    bool json = false;
};

/// Declares the sub-command; `options` outlives the parsing.
CLI::App *addPresetsCommand(CLI::App &program, PresetsOptions &options);

/// Prints presets, or converts a file of them. @return the exit status
int runPresets(const PresetsOptions &options);

} // namespace plexa

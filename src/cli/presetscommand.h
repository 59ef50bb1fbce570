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
    std::string file;
    std::string convertTo; ///< empty: nothing is written
    bool json = false;
};

/// Declares the sub-command; `options` outlives the parsing.
CLI::App *addPresetsCommand(CLI::App &program, PresetsOptions &options);

/// Prints the contents of a file of presets, or converts it. @return the exit status
int runPresets(const PresetsOptions &options);

} // namespace plexa

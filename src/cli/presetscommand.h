// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>

namespace CLI
{
class App;
}

namespace plexa
{

/// What stands on the command line of "plexa-cli presets".
struct PresetsOptions {
    std::string file;
    std::string convertTo; ///< empty: nothing is written
    bool json = false;
};

/// Declares the sub-command; `options` outlives the parsing.
CLI::App *addPresetsCommand(CLI::App &program, PresetsOptions &options);

/// Prints what a file of presets holds, or writes it again. @return the exit status
int runPresets(const PresetsOptions &options);

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>
#include <vector>

namespace CLI
{
class App;
}

namespace plexa
{

/// The command line of "plexa-cli inspect".
struct InspectOptions {
    std::vector<std::string> paths;
    bool json = false;
};

/// Declares the sub-command; `options` outlives the parsing.
CLI::App *addInspectCommand(CLI::App &program, InspectOptions &options);

/// Prints the facts about each file. @return the exit status
int runInspect(const InspectOptions &options);

} // namespace plexa

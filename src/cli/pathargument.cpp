// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/pathargument.h"

#include "cli/photopaths.h"

#include <CLI/CLI.hpp>

#include <string_view>

namespace plexa
{
namespace
{

const std::string kNothing = "there is nothing in it";

} // namespace

const char *emptyAssignment(int argc, char *const *argv)
{
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument == "--")
            break;
        if (argument.starts_with("--") && argument.find('=') == argument.size() - 1)
            return argv[i];
    }
    return nullptr;
}

CLI::Validator someText()
{
    return CLI::Validator([](std::string &text) { return text.empty() ? kNothing : std::string(); },
                          std::string());
}

CLI::Validator somePath()
{
    return CLI::Validator(
        [](std::string &path) { return path.empty() ? kNothing : decodedPath(path).failure.toStdString(); },
        std::string());
}

} // namespace plexa

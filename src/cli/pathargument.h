// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace CLI
{
class Validator;
}

namespace plexa
{

/// The first argument that is an option with "=" and nothing after it, to which the parser would assign the
/// next argument; null when there is none.
const char *emptyAssignment(int argc, char *const *argv);

/// For options whose value must not be empty.
CLI::Validator someText();

/// For options that name a file or a folder: a valid text that is not empty. A path that is not valid text
/// would become the path of another file.
CLI::Validator somePath();

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace CLI
{
class Validator;
}

namespace plexa
{

/// The first of the arguments that is an option with "=" and nothing after it, for which the parser would
/// take the next argument; null when there is none.
const char *emptyAssignment(int argc, char *const *argv);

/// For options that must not be given without anything.
CLI::Validator someText();

/// For options that name a file or a folder: something, and a text, since a path that is none would lead to
/// another file.
CLI::Validator somePath();

} // namespace plexa

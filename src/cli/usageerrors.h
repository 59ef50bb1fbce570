// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

#include <string>
#include <vector>

namespace CLI
{
class App;
class ParseError;
class Validator;
} // namespace CLI

namespace plexa
{

/// What is wrong with the command line, and the way out, as text that follows the program's name.
QString usageErrorText(const CLI::App &program, const CLI::ParseError &error);

/// For options with a whole number in this range.
CLI::Validator wholeNumber(int lowest, int highest);

/// For options with one of these values.
CLI::Validator oneOf(const std::vector<std::string> &values);

} // namespace plexa

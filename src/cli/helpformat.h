// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <memory>

namespace CLI
{
class FormatterBase;
}

namespace plexa
{

/// The form of --help: at most 80 columns, options in groups.
std::shared_ptr<CLI::FormatterBase> helpFormat();

} // namespace plexa

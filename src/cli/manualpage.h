// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

namespace CLI
{
class App;
}

namespace plexa
{

/// The manual page of the program in the language of man(7), from the declared options, the fields and the
/// tokens. The same on each machine.
QString manualPage(const CLI::App &program);

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace plexa
{

/// The exit status of the program.
enum ExitStatus { kAllDone = 0, kSomethingFailed = 1, kWrongUsage = 2 };

} // namespace plexa

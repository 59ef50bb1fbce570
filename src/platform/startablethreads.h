// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace plexa
{

/// How many of `wanted` threads can run beside the calling one at this moment: where a limit on memory or on
/// processes is tight, not all of them can be started. Tries it.
/// @return 0 to `wanted`
int startableThreads(int wanted);

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace plexa
{

/// From now on the first SIGINT, SIGHUP or SIGTERM sets the flag of isInterrupted(); the second one ends the
/// program. Until then signals end the program at once. Signals that are ignored at the start stay ignored.
/// Called once, by the main thread, when results begin that must not be left half-done.
void catchInterruptions();

/// Has a signal asked the program to stop? Any thread.
bool isInterrupted();

} // namespace plexa

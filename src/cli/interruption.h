// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace plexa
{

/// From now on the first SIGINT, SIGHUP or SIGTERM sets the flag of isInterrupted(); the second one ends the
/// program. Signals that are ignored at the start stay ignored. Called once, by the main thread.
void catchInterruptions();

/// Has a signal asked the program to stop? Any thread.
bool isInterrupted();

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace plexa
{

/// From now on the first Ctrl-C, hang-up or request to end only sets the flag that isInterrupted() tells; the
/// second one ends the program. What is ignored at the start stays ignored. To be called once, by the main
/// thread.
void catchInterruptions();

/// A file that grows beyond the limit of the process fails to be written, like on a full disk, instead of
/// ending the program. Once, by the main thread.
void outliveFileSizeLimit();

/// Has somebody asked the program to stop? Any thread.
bool isInterrupted();

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "saving/savingrun.h"

#include <atomic>

namespace plexa
{

class Alerts;

/// Saves all copies of a run, and returns when they are reported. The calling thread goes through the photos
/// in order, decides everything about their copies and reports the results; a pool reads ahead what the names
/// need, and writes the copies.
///
/// Copies that use the same file wait for each other, so that every file ends up as if the copies were
/// written one after another: where a copy under way has the name of the next one, the next one waits to see
/// whether there will be a file (unless all names are to be unique); a copy that overwrites a file waits
/// until no other copy reads or writes it; a photo that is being overwritten is begun afterwards.
/// @param terminateOperation  true: no further photo is begun; may be set on any thread
void saveCopies(const SavingRun &run, SavingObserver &observer, Alerts &alerts,
                const std::atomic_bool &terminateOperation);

} // namespace plexa

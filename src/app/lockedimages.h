// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/imagelist.h"

#include <functional>

namespace plexa
{

/// Work on each of many photos under the photo's own processing lock. It never waits for a lock: a locked
/// photo is tried again after the others.
struct LockedImagesWork {
    ImageList images;
    int threads = 1;          ///< at least 1
    bool loadsImages = false; ///< the work needs photos that are loaded

    /// Called once for each photo, with its lock held, on a worker thread.
    /// @param isLoaded  it stays loaded meanwhile; false: the work must not load it, and with `loadsImages`
    /// it
    ///                  cannot be loaded
    std::function<void(const std::shared_ptr<ImageObject> &image, bool isLoaded)> work;

    /// Called after it, without the lock. Worker threads, one at a time.
    std::function<void(const std::shared_ptr<ImageObject> &image)> done;

    /// Checked before every try; true: no further photo is begun. Any thread.
    std::function<bool()> isStopped;
};

/// Returns when every photo is done or the work was stopped.
void runOnLockedImages(const LockedImagesWork &job);

} // namespace plexa

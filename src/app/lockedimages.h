// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/imagelist.h"

#include <functional>

namespace plexa
{

/// Work on each of many photos under the photo's own processing lock. It never waits for a lock: a photo that
/// somebody else holds comes round again when the others have had their turn.
struct LockedImagesWork {
    ImageList images;
    int threads = 1;          ///< at least 1
    bool loadsImages = false; ///< the work needs photos that are loaded

    /// Called once for each photo that is reached, with its lock held, on a worker thread.
    /// @param isLoaded  it stays so meanwhile; false: the photo must not be asked for anything that loads it,
    ///                  and cannot be loaded if that was wanted
    std::function<void(ImageObject &image, bool isLoaded)> work;

    /// Called after it, the lock given back. Worker threads, one at a time.
    std::function<void(const std::shared_ptr<ImageObject> &image)> done;

    /// Asked before every try; true: no further photo is begun. Any thread.
    std::function<bool()> isStopped;
};

/// Runs it and returns when every photo is done, or it was stopped.
void runOnLockedImages(const LockedImagesWork &job);

} // namespace plexa

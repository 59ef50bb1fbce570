// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <functional>

namespace plexa
{

/// Work on many items that overlaps on several threads while its results come out in the items' order.
struct OrderedWork {
    std::size_t count = 0;
    int threads = 1; ///< at least 1

    /// Does item `index` on a worker thread; called once for each item that is begun, items being begun in
    /// order. Must not throw.
    std::function<void(std::size_t index)> work;

    /// Takes over item `index` on the calling thread, in order and without gaps, after work(index) has
    /// returned.
    std::function<void(std::size_t index)> deliver;

    /// Asked before an item is begun; true: no further item is begun. May be empty. Any thread.
    std::function<bool()> isStopped;
};

/// Runs it and returns when every item that was begun is delivered.
/// @return how many items were begun: all of them, unless it was stopped
std::size_t runOrdered(const OrderedWork &job);

} // namespace plexa

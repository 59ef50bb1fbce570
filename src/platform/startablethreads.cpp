// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/startablethreads.h"

#include <algorithm>
#include <future>
#include <new>
#include <system_error>
#include <thread>
#include <vector>

namespace plexa
{

int startableThreads(int wanted)
{
    std::vector<std::jthread> threads;
    std::promise<void> end;
    try {
        threads.reserve(static_cast<std::size_t>(std::max(wanted, 0)));
        const std::shared_future<void> ended = end.get_future().share();
        for (int i = 0; i < wanted; ++i)
            threads.emplace_back([ended] { ended.wait(); });
    } catch (const std::system_error &) { // the others are not to be had
    } catch (const std::bad_alloc &) {
    }
    end.set_value();
    return static_cast<int>(threads.size());
}

} // namespace plexa

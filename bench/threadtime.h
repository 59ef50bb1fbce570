// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <ctime>

namespace plexa
{

/// How long this thread has worked, in nanoseconds. On a busy machine it waits besides, which is not its
/// fault.
inline double threadNanoseconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}

} // namespace plexa

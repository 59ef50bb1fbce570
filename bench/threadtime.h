// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdio>
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

/// How long this thread could have worked but had no core, in nanoseconds; 0 where the system does not count.
inline double threadDelayNanoseconds()
{
    double worked = 0;
    double delayed = 0;
    if (std::FILE *file = std::fopen("/proc/thread-self/schedstat", "r")) {
        if (std::fscanf(file, "%lf %lf", &worked, &delayed) != 2)
            delayed = 0;
        std::fclose(file);
    }
    return delayed;
}

} // namespace plexa

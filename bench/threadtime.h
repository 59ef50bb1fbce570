// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdio>
#include <ctime>

namespace plexa
{

/// The processor time of this thread, in nanoseconds: without the time that it waits on a busy machine.
inline double threadNanoseconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}

/// How long this thread was ready but had no core, in nanoseconds; 0 if the system does not measure it.
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

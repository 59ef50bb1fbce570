// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/interruption.h"

#include <atomic>
#include <csignal>

namespace plexa
{

namespace
{

std::atomic_bool isAsked = false;
static_assert(std::atomic_bool::is_always_lock_free, "a signal handler may not wait for a lock");

void onSignal(int signal)
{
    isAsked = true;
    std::signal(signal, SIG_DFL);
}

} // namespace

void catchInterruptions()
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        // A signal that the parent process ignores stays ignored, as for nohup.
        if (std::signal(signal, onSignal) == SIG_IGN)
            std::signal(signal, SIG_IGN);
    }
}

bool isInterrupted()
{
    return isAsked;
}

} // namespace plexa

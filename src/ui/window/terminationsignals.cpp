// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/terminationsignals.h"

#include <QSocketNotifier>

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

namespace plexa
{
namespace
{

constexpr std::array kSignals{SIGTERM, SIGINT, SIGHUP};

int writeEnd = -1; // of a pipe; read by the signal handler

/// Only what a handler may call.
void onSignal(int signal)
{
    const int error = errno;
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = ::write(writeEnd, &byte, 1);
    std::signal(signal, SIG_DFL);
    errno = error;
}

} // namespace

TerminationSignals::TerminationSignals()
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return; // the signals keep their usual effect
    m_readEnd = ends[0];
    writeEnd = ends[1];
    auto *const notifier = new QSocketNotifier(m_readEnd, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this, notifier] {
        notifier->setEnabled(false);
        Q_EMIT received();
    });
    for (const int signal : kSignals) {
        // A signal that the parent process ignores stays ignored, as for nohup.
        if (std::signal(signal, onSignal) == SIG_IGN)
            std::signal(signal, SIG_IGN);
    }
}

TerminationSignals::~TerminationSignals()
{
    if (m_readEnd < 0)
        return;
    for (const int signal : kSignals) {
        if (std::signal(signal, SIG_DFL) == SIG_IGN)
            std::signal(signal, SIG_IGN);
    }
    ::close(m_readEnd);
    ::close(writeEnd);
}

} // namespace plexa

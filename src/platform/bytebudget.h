// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"

#include <QtGlobal>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>

namespace plexa
{

/// A bounded number of bytes that workers share: each reserves what it is about to allocate and waits until
/// there is room. First come, first served, so that small requests do not starve a large one. Any thread.
/// A thread that holds a reservation must not wait for a second one: two such threads can deadlock.
class ByteBudget final
{
public:
    /// Bytes that its destructor releases. Must not outlive its budget.
    class Reservation final
    {
    public:
        Reservation() = default;
        ~Reservation() { release(); }
        Reservation(Reservation &&other) noexcept;
        Reservation &operator=(Reservation &&other) noexcept;

        qint64 bytes() const { return m_bytes; }

        /// Releases the bytes early.
        void release();

    private:
        friend class ByteBudget;
        Reservation(ByteBudget &budget, qint64 bytes);

        ByteBudget *m_budget = nullptr;
        qint64 m_bytes = 0;
    };

    /// @param total  below 0 counts as 0
    explicit ByteBudget(qint64 total);
    ByteBudget(const ByteBudget &) = delete;
    ByteBudget &operator=(const ByteBudget &) = delete;

    /// Waits until so many bytes are free.
    /// @param bytes  below 0 counts as 0
    /// @return a failure, at once, when `bytes` is more than there can ever be
    [[nodiscard]] Result<Reservation> reserve(qint64 bytes);

    qint64 total() const { return m_total; }

    /// The bytes that are free at this moment.
    qint64 available() const;

private:
    void giveBack(qint64 bytes);

    const qint64 m_total;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    qint64 m_free;                 // guarded by m_mutex
    std::deque<quint64> m_waiting; // tickets, the oldest first; guarded by m_mutex
    quint64 m_nextTicket = 0;      // guarded by m_mutex
};

/// The memory that this process may use: the machine's, or less where a control group limits it; where the
/// process's own limits are tighter, what they leave at this moment.
qint64 physicalMemoryBytes();

/// What this process may map beyond what it has, by its limits of addresses and of data (RLIMIT_AS,
/// RLIMIT_DATA). @return none where it has no such limits
std::optional<qint64> mappableBytes();

/// Whether a library that does not survive a failed allocation may be called: where the process's own limits
/// leave twice the bytes that it is estimated to need. True where there are no limits.
bool hasRoomToSpare(qint64 bytes);

/// Saves addresses where the process has limits of its own. Call before the first thread is started.
void saveAddressSpace();

} // namespace plexa

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
///
/// A thread that holds a reservation must not wait for a second one: two that do so can wait for each other
/// for ever.
class ByteBudget final
{
public:
    /// Bytes that are given back when it is destroyed. Must not outlive its budget.
    class Reservation final
    {
    public:
        Reservation() = default;
        ~Reservation() { release(); }
        Reservation(Reservation &&other) noexcept;
        Reservation &operator=(Reservation &&other) noexcept;

        qint64 bytes() const { return m_bytes; }

        /// Gives the bytes back early.
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

    /// The bytes that nobody holds at this moment; another thread may take them in the next.
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

/// May a library be let loose that does not survive an allocation that fails? It may where the process's own
/// limits leave twice as much as it is thought to take. True where there are none: then the machine lends.
bool hasRoomToSpare(qint64 bytes);

/// Makes the most of few addresses. To be called before the first thread is started; does nothing where the
/// process has no limits of its own.
void saveAddressSpace();

} // namespace plexa

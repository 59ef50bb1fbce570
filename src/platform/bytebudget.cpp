// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/bytebudget.h"

#include <QCoreApplication>
#include <QFile>
#include <QLocale>

#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace plexa
{
namespace
{

struct ByteBudgetTexts {
    Q_DECLARE_TR_FUNCTIONS(ByteBudget)
};

/// For what a library takes whatever the picture's size: stacks of threads, tables.
constexpr qint64 kSpareBytes = 32'000'000;

QByteArray contentsOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// This process's group in the unified hierarchy ("/user.slice/..."); empty when there is none.
QString controlGroup()
{
    for (const QByteArray &line : contentsOf(QStringLiteral("/proc/self/cgroup")).split('\n')) {
        if (line.startsWith("0::"))
            return QString::fromUtf8(line.mid(3));
    }
    return {};
}

/// @return the soft limit, if there is one
std::optional<qint64> limitOf(__rlimit_resource resource)
{
    rlimit limit = {};
    if (getrlimit(resource, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY ||
        limit.rlim_cur > rlim_t(std::numeric_limits<qint64>::max()))
        return std::nullopt;
    return qint64(limit.rlim_cur);
}

} // namespace

ByteBudget::Reservation::Reservation(ByteBudget &budget, qint64 bytes)
    : m_budget(&budget)
    , m_bytes(bytes)
{
}

ByteBudget::Reservation::Reservation(Reservation &&other) noexcept
    : m_budget(std::exchange(other.m_budget, nullptr))
    , m_bytes(std::exchange(other.m_bytes, 0))
{
}

ByteBudget::Reservation &ByteBudget::Reservation::operator=(Reservation &&other) noexcept
{
    if (this != &other) {
        release();
        m_budget = std::exchange(other.m_budget, nullptr);
        m_bytes = std::exchange(other.m_bytes, 0);
    }
    return *this;
}

void ByteBudget::Reservation::release()
{
    if (ByteBudget *budget = std::exchange(m_budget, nullptr))
        budget->giveBack(std::exchange(m_bytes, 0));
}

ByteBudget::ByteBudget(qint64 total)
    : m_total(std::max<qint64>(total, 0))
    , m_free(m_total)
{
}

Result<ByteBudget::Reservation> ByteBudget::reserve(qint64 bytes)
{
    bytes = std::max<qint64>(bytes, 0);
    if (bytes > m_total) {
        const QLocale plain = QLocale::c();
        return fail(ByteBudgetTexts::tr("%1 of memory would be needed, and %2 may be used")
                        .arg(plain.formattedDataSize(bytes), plain.formattedDataSize(m_total)));
    }
    std::unique_lock lock(m_mutex);
    const quint64 ticket = m_nextTicket++;
    m_waiting.push_back(ticket);
    m_changed.wait(lock, [&] { return m_waiting.front() == ticket && bytes <= m_free; });
    m_waiting.pop_front();
    m_free -= bytes;
    // The next in line may fit as well.
    m_changed.notify_all();
    return Reservation(*this, bytes);
}

qint64 ByteBudget::available() const
{
    const std::lock_guard lock(m_mutex);
    return m_free;
}

void ByteBudget::giveBack(qint64 bytes)
{
    const std::lock_guard lock(m_mutex);
    m_free += bytes;
    // Under the lock: the budget may be destroyed as soon as the last reservation is seen to be gone.
    m_changed.notify_all();
}

qint64 physicalMemoryBytes()
{
    qint64 bytes = qint64(sysconf(_SC_PHYS_PAGES)) * sysconf(_SC_PAGESIZE);
    // A group's limit holds for the groups inside of it too.
    for (QString group = controlGroup(); !group.isEmpty();
         group.truncate(group.lastIndexOf(QLatin1Char('/')))) {
        bool isNumber = false; // "max" where there is no limit
        const qint64 limit = contentsOf(QStringLiteral("/sys/fs/cgroup%1/memory.max").arg(group))
                                 .trimmed()
                                 .toLongLong(&isNumber);
        if (isNumber && limit > 0)
            bytes = std::min(bytes, limit);
    }
    return std::min(bytes, mappableBytes().value_or(bytes));
}

std::optional<qint64> mappableBytes()
{
    const std::optional<qint64> space = limitOf(RLIMIT_AS);
    const std::optional<qint64> data = limitOf(RLIMIT_DATA);
    if (!space && !data)
        return std::nullopt;
    // Pages: all that is mapped comes first, data and stack sixth (proc(5), "statm").
    const QList<QByteArray> pages = contentsOf(QStringLiteral("/proc/self/statm")).simplified().split(' ');
    const auto left = [&pages](std::optional<qint64> limit, int field) {
        const qint64 mapped = pages.value(field).toLongLong() * sysconf(_SC_PAGESIZE);
        return limit ? std::max<qint64>(*limit - mapped, 0) : std::numeric_limits<qint64>::max();
    };
    return std::min(left(space, 0), left(data, 5));
}

bool hasRoomToSpare(qint64 bytes)
{
    const std::optional<qint64> room = mappableBytes();
    return !room || bytes <= (*room - kSpareBytes) / 2;
}

void saveAddressSpace()
{
    // Each thread would set 64 MB of addresses aside for what it allocates.
    if (mappableBytes())
        mallopt(M_ARENA_MAX, 1);
}

} // namespace plexa

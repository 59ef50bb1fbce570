// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/bytebudget.h"

#include <QCoreApplication>
#include <QFile>
#include <QLocale>

#include <unistd.h>

#include <algorithm>
#include <utility>

namespace plexa
{
namespace
{

struct ByteBudgetTexts {
    Q_DECLARE_TR_FUNCTIONS(ByteBudget)
};

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
    return bytes;
}

} // namespace plexa

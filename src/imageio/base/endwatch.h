// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QIODevice>

namespace plexa
{

/// Reads from another device and records reads beyond its end, for decoders that accept a truncated picture
/// as complete.
class EndWatch final : public QIODevice
{
public:
    /// @param device  open for reading, random access; must outlive the watch
    explicit EndWatch(QIODevice &device)
        : m_device(device)
    {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

    /// Forgets all earlier reads.
    void restart() { m_hasEndedEarly = false; }

    /// Has a read asked for more bytes than the device has?
    bool hasEndedEarly() const { return m_hasEndedEarly; }

    qint64 size() const override { return m_device.size(); }

protected:
    qint64 readData(char *data, qint64 count) override
    {
        const qint64 at = pos();
        const bool isInside = at < m_device.size() && m_device.seek(at);
        const qint64 got = isInside ? m_device.read(data, count) : 0;
        m_hasEndedEarly = m_hasEndedEarly || got < count;
        return got;
    }

    qint64 writeData(const char *, qint64) override { return -1; }

private:
    QIODevice &m_device;
    bool m_hasEndedEarly = false;
};

} // namespace plexa

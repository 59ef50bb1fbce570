// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QIODevice>

namespace plexa
{

/// Reads from another device and notices when more is asked for than is there, for decoders that take a
/// picture whose data end early for a whole one. Unbuffered: a decoder has to ask for no more than it needs.
class EndWatch final : public QIODevice
{
public:
    /// @param device  open for reading, random access; it must outlive the watch
    /// @param from    reads that begin before this position are not watched
    EndWatch(QIODevice &device, qint64 from)
        : m_device(device)
        , m_from(from)
    {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

    /// Was more asked for than the device has?
    bool hasEndedEarly() const { return m_hasEndedEarly; }

    qint64 size() const override { return m_device.size(); }

protected:
    qint64 readData(char *data, qint64 count) override
    {
        const qint64 at = pos();
        const bool isThere = at < m_device.size() && m_device.seek(at);
        const qint64 got = isThere ? m_device.read(data, count) : 0;
        if (got < count && at >= m_from)
            m_hasEndedEarly = true;
        return got;
    }

    qint64 writeData(const char *, qint64) override { return -1; }

private:
    QIODevice &m_device;
    const qint64 m_from;
    bool m_hasEndedEarly = false;
};

} // namespace plexa

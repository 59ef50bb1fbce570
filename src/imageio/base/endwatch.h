// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QIODevice>

namespace plexa
{

/// Reads from another device and notices when more is asked for than is there, for decoders that take a
/// picture whose data end early for a whole one.
class EndWatch final : public QIODevice
{
public:
    /// How the decoder reads.
    enum class Manner {
        Exactly, ///< no more than it needs: each byte that is not there is missed
        AsText, ///< in lines, or as many bytes as it can get: only what it asks for behind the end is missed,
                ///< and a line end, which a text's last line may lack, is added
    };

    /// @param device  open for reading, random access; it must outlive the watch
    /// @param from    reads that begin before this position are not watched
    EndWatch(QIODevice &device, qint64 from, Manner manner = Manner::Exactly)
        : m_device(device)
        , m_from(from)
        , m_isText(manner == Manner::AsText)
    {
        open(m_isText ? QIODevice::ReadOnly : QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

    /// Forgets what was asked for up to now.
    void restart() { m_hasEndedEarly = false; }

    /// Was more asked for than the device has?
    bool hasEndedEarly() const { return m_hasEndedEarly; }

    qint64 size() const override { return m_device.size() + (m_isText ? 1 : 0); }

protected:
    qint64 readData(char *data, qint64 count) override
    {
        const qint64 at = pos();
        const bool isThere = at < m_device.size() && m_device.seek(at);
        qint64 got = isThere ? m_device.read(data, count) : 0;
        if (m_isText && got == 0 && count > 0 && at == m_device.size()) {
            *data = '\n';
            got = 1;
        }
        if (got < (m_isText ? qMin<qint64>(count, 1) : count) && at >= m_from)
            m_hasEndedEarly = true;
        return got;
    }

    qint64 writeData(const char *, qint64) override { return -1; }

private:
    QIODevice &m_device;
    const qint64 m_from;
    const bool m_isText;
    bool m_hasEndedEarly = false;
};

} // namespace plexa

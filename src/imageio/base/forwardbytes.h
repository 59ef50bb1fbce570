// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QIODevice>

namespace plexa
{

/// Reads forward in large pieces, for formats of many small blocks. One thread at a time.
class ForwardBytes
{
public:
    /// @param device  read from its position; must outlive this object
    explicit ForwardBytes(QIODevice &device)
        : m_device(device)
    {
    }

    /// The number of bytes read so far.
    qint64 position() const { return m_start + m_at; }
    bool metEnd() const { return m_metEnd; }
    bool readFailed() const { return m_readFailed; }

    /// @return the next byte; -1 at the end
    int next()
    {
        if (m_at >= m_buffer.size() && !fill())
            return -1;
        return uchar(m_buffer[m_at++]);
    }

    /// @return `count` bytes, fewer at the end of the file
    QByteArray take(qsizetype count)
    {
        QByteArray bytes;
        while (bytes.size() < count && (m_at < m_buffer.size() || fill())) {
            const qsizetype piece = qMin(count - bytes.size(), m_buffer.size() - m_at);
            bytes.append(m_buffer.constData() + m_at, piece);
            m_at += piece;
        }
        return bytes;
    }

    /// @return the number of skipped bytes, less than `count` at the end of the file
    qsizetype skip(qsizetype count)
    {
        qsizetype done = 0;
        while (done < count && (m_at < m_buffer.size() || fill())) {
            const qsizetype piece = qMin(count - done, m_buffer.size() - m_at);
            m_at += piece;
            done += piece;
        }
        return done;
    }

private:
    bool fill()
    {
        m_start += m_buffer.size();
        m_at = 0;
        m_buffer.resize(64 * 1024);
        const qint64 got = m_device.read(m_buffer.data(), m_buffer.size());
        m_readFailed = m_readFailed || got < 0;
        m_metEnd = m_metEnd || got == 0;
        m_buffer.resize(qMax<qint64>(got, 0));
        return got > 0;
    }

    QIODevice &m_device;
    QByteArray m_buffer;
    qint64 m_start = 0; ///< of the buffer, from the first byte
    qsizetype m_at = 0; ///< in the buffer
    bool m_readFailed = false;
    bool m_metEnd = false;
};

} // namespace plexa

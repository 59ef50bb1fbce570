// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QIODevice>

#include <optional>

namespace plexa
{

/// Reads the marker segments of one JPEG picture before its data. Skips bytes between segments, as decoders
/// do, within bounds.
class JpegSegmentReader
{
public:
    /// @param device  random access, at the picture's first byte; it must outlive the reader
    explicit JpegSegmentReader(QIODevice &device)
        : m_device(device)
    {
    }

    /// Steps to the next segment.
    /// @return its marker (JpegMarker); nothing at the end of the file or of the bounds
    std::optional<int> next();

    /// The segment's first bytes after its length, up to `most`. Valid until the next call.
    QByteArrayView payload(qint64 most = 0x10000);

    /// Does the payload begin like this?
    bool isNamed(QByteArrayView name) { return payload(name.size()).startsWith(name); }

    /// The payload after its name.
    QByteArray contentsBehind(QByteArrayView name);

    /// Where in the file the payload begins.
    qint64 payloadPosition() const { return m_payloadPosition; }

private:
    QIODevice &m_device;
    qint64 m_nextPosition = -1;
    qint64 m_payloadPosition = 0;
    qint64 m_payloadSize = 0;
    QByteArray m_payload;
    int m_count = 0;
};

} // namespace plexa

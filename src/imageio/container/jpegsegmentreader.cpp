// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/container/jpegsegmentreader.h"

#include "imageio/container/jpegmarkers.h"

#include <QtEndian>

namespace plexa
{

namespace
{

/// Real pictures have a few dozen segments.
constexpr int kMaxSegments = 20'000;

/// Between two segments.
constexpr int kMaxStrayBytes = 0x100000;

} // namespace

std::optional<int> JpegSegmentReader::next()
{
    m_payload.clear();
    m_payloadSize = 0;
    if (m_nextPosition < 0) {
        char start[2];
        if (m_device.read(start, 2) != 2 || uchar(start[0]) != 0xff || uchar(start[1]) != JpegMarker::SOI)
            return {};
    } else if (!m_device.seek(m_nextPosition)) {
        return {};
    }
    if (++m_count > kMaxSegments)
        return {};
    // Up to the next marker: fill bytes are allowed, other bytes are skipped as decoders do.
    char byte = 0;
    bool isMarker = false;
    for (int skipped = 0; skipped < kMaxStrayBytes; ++skipped) {
        if (!m_device.getChar(&byte))
            return {};
        if (isMarker && byte != 0 && uchar(byte) != 0xff)
            break;
        isMarker = uchar(byte) == 0xff;
    }
    const int marker = uchar(byte);
    m_nextPosition = m_device.pos();
    if (marker == JpegMarker::TEM || (marker >= JpegMarker::RST0 && marker <= JpegMarker::EOI))
        return marker;
    uchar length[2];
    if (m_device.read(reinterpret_cast<char *>(length), 2) != 2)
        return {};
    m_payloadSize = qFromBigEndian<quint16>(length) - 2;
    if (m_payloadSize < 0)
        return {};
    m_payloadPosition = m_nextPosition + 2;
    m_nextPosition = m_payloadPosition + m_payloadSize;
    return marker;
}

QByteArrayView JpegSegmentReader::payload(qint64 most)
{
    if (m_payload.size() < qMin<qint64>(most, m_payloadSize) && m_device.seek(m_payloadPosition))
        m_payload = m_device.read(qMin<qint64>(most, m_payloadSize));
    return m_payload;
}

QByteArray JpegSegmentReader::contentsBehind(QByteArrayView name)
{
    const QByteArrayView all = payload(); // may be shorter than when its name was read
    return all.sliced(qMin(name.size(), all.size())).toByteArray();
}

} // namespace plexa

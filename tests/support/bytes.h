// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QtEndian>

#include <concepts>

namespace plexa::test
{

/// The lowest bytes of a number, the most significant first.
inline QByteArray bigEndian(std::integral auto number, int count)
{
    char bytes[8];
    qToBigEndian(static_cast<quint64>(number), bytes);
    return QByteArray(bytes + 8 - count, count);
}

/// The lowest bytes of a number, the least significant first.
inline QByteArray littleEndian(std::integral auto number, int count)
{
    char bytes[8];
    qToLittleEndian(static_cast<quint64>(number), bytes);
    return QByteArray(bytes, count);
}

inline QByteArray big16(std::integral auto number)
{
    return bigEndian(number, 2);
}
inline QByteArray big32(std::integral auto number)
{
    return bigEndian(number, 4);
}
inline QByteArray little16(std::integral auto number)
{
    return littleEndian(number, 2);
}
inline QByteArray little32(std::integral auto number)
{
    return littleEndian(number, 4);
}

/// The CRC-32 of ISO 3309 bit by bit, as annex D of the PNG standard defines it.
inline quint32 crc32Of(const QByteArray &bytes)
{
    quint32 crc = 0xffffffff;
    for (const char byte : bytes) {
        crc ^= uchar(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1) != 0 ? 0xedb88320 ^ (crc >> 1) : crc >> 1;
    }
    return ~crc;
}

/// A chunk of a PNG file: length, type (4 letters), data, CRC.
inline QByteArray pngChunk(const QByteArray &type, const QByteArray &data)
{
    return big32(data.size()) + type + data + big32(crc32Of(type + data));
}

} // namespace plexa::test

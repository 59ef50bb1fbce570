// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/simple/pictureheaders.h"

#include <QtEndian>

#include <bit>
#include <limits>

namespace plexa
{

namespace
{

/// Profiles of printers have a few megabytes; what claims more is damaged.
constexpr qint64 kMaxProfileBytes = 32'000'000;

QByteArray readAt(QIODevice &device, qint64 position, qint64 count)
{
    if (count < 0 || position < 0 || position > device.size() - count || !device.seek(position))
        return {};
    return device.read(count);
}

/// The bits of each sample in a bitmap of 16 bits a pixel.
/// @param start  the file's first bytes, at least 46
std::array<int, 4> sampleBitsOf(const QByteArray &start)
{
    const auto headerSize = qFromLittleEndian<quint32>(start.constData() + 14);
    const auto compression = qFromLittleEndian<quint32>(start.constData() + 30);
    if (qFromLittleEndian<quint16>(start.constData() + 28) != 16)
        return {};
    if (compression == 0)
        return {5, 5, 5, 0};
    std::array<int, 4> bits = {};
    const size_t masks = headerSize >= 56 ? 4 : 3; // behind a short header stand those of the colors
    for (size_t i = 0; i < masks && start.size() >= 58 + qsizetype(4 * i); ++i)
        bits[i] = std::popcount(qFromLittleEndian<quint32>(start.constData() + 54 + 4 * i));
    return bits;
}

/// The next number in the header of a Netpbm file, behind blanks and comments.
/// @param at  where to look; moved behind the number
/// @return -1: there is none, or a longer one than any side
qint64 nextNumber(const QByteArray &start, qsizetype &at)
{
    for (bool isComment = false; at < start.size(); ++at) {
        if (start[at] == '#' || isComment)
            isComment = start[at] != '\n' && start[at] != '\r';
        else if (start[at] < '\t' || (start[at] > '\r' && start[at] != ' '))
            break;
    }
    constexpr qsizetype kMostDigits = 9;
    const qsizetype first = at;
    while (at < start.size() && start[at] >= '0' && start[at] <= '9')
        ++at;
    return at > first && at - first <= kMostDigits ? start.mid(first, at - first).toLongLong() : -1;
}

/// The fewest bytes that the samples of a Netpbm picture take (netpbm, "pbm", "pgm" and "ppm").
/// @param kind  '1' to '6'
qint64 leastNetpbmBytes(char kind, qint64 width, qint64 height, qint64 most)
{
    const qint64 samples = kind == '3' || kind == '6' ? 3 : 1;
    if (kind == '4')
        return (width + 7) / 8 * height;
    if (kind == '1') // digits need nothing between them
        return width * height;
    const bool isText = kind < '4';
    const qint64 sampleBytes = isText || most > 255 ? 2 : 1; // as text: a digit and a blank
    return width * height * samples * sampleBytes - (isText ? 1 : 0);
}

} // namespace

PictureHeader readWebpHeader(QIODevice &device)
{
    PictureHeader header;
    header.depth = 8;
    header.colorModel = QStringLiteral("RGB");
    const QByteArray start = readAt(device, 0, 38);
    if (start.size() < 38)
        return header;
    const QByteArray kind = start.mid(12, 4);
    if (kind == "VP8X") // flags
        header.hasAlpha = (uchar(start[20]) & 0x10) != 0;
    else if (kind == "VP8L") // behind a signature byte and two sides of 14 bits
        header.hasAlpha = (uchar(start[24]) & 0x10) != 0;
    else
        header.hasAlpha = false;
    // The profile stands right behind the extended header, in front of all pixels.
    if (kind != "VP8X" || start.mid(30, 4) != "ICCP")
        return header;
    const qint64 size = qFromLittleEndian<quint32>(start.constData() + 34);
    if (size <= kMaxProfileBytes)
        header.iccProfile = readAt(device, 38, size);
    return header;
}

PictureHeader readBmpHeader(QIODevice &device)
{
    PictureHeader header;
    header.depth = 8;
    header.colorModel = QStringLiteral("RGB");
    const QByteArray start = readAt(device, 0, qMin<qint64>(70, device.size()));
    if (start.size() < 46 || qFromLittleEndian<quint32>(start.constData() + 14) < 40)
        return header;
    const auto width = qFromLittleEndian<qint32>(start.constData() + 18);
    const auto height = qFromLittleEndian<qint32>(start.constData() + 22);
    if (height > std::numeric_limits<qint32>::min()) // rows from the top down have a negative count
        header.size = QSize(width, qAbs(height));
    header.sampleBits = sampleBitsOf(start);
    const auto horizontal = qFromLittleEndian<qint32>(start.constData() + 38);
    const auto vertical = qFromLittleEndian<qint32>(start.constData() + 42);
    if (horizontal > 0 && vertical > 0) {
        header.dpiWidth = horizontal * 0.0254;
        header.dpiHeight = vertical * 0.0254;
    }
    return header;
}

PictureHeader readNetpbmHeader(QIODevice &device)
{
    PictureHeader header;
    constexpr qint64 kHeaderBytes = 4096; // comments can be long
    const QByteArray start = readAt(device, 0, qMin(device.size(), kHeaderBytes));
    if (start.size() < 2 || start[1] < '1' || start[1] > '6')
        return header;
    qsizetype at = 2;
    const qint64 width = nextNumber(start, at);
    const qint64 height = nextNumber(start, at);
    const bool hasMost = start[1] != '1' && start[1] != '4';
    const qint64 most = hasMost ? nextNumber(start, at) : 1;
    if (width < 1 || height < 1 || most < 1 || width > std::numeric_limits<int>::max() / height)
        return header;
    // A blank ends the last number.
    header.endsEarly = leastNetpbmBytes(start[1], width, height, most) > device.size() - at - 1;
    return header;
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/pictureheaders.h"

#include <QtEndian>

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

/// Numbers of a file in either byte order, 0 behind the end; offsets as in TIFF (6.0, section 2) or its
/// 64-bit kind.
class FileNumbers
{
public:
    FileNumbers(bool isLittle, bool isBig)
        : m_isLittle(isLittle)
        , m_isBig(isBig)
    {
    }

    template<class Word>
    quint64 at(const QByteArray &bytes, qsizetype offset) const
    {
        if (offset < 0 || offset > bytes.size() - qsizetype(sizeof(Word)))
            return 0;
        const char *p = bytes.constData() + offset;
        return m_isLittle ? qFromLittleEndian<Word>(p) : qFromBigEndian<Word>(p);
    }

    quint64 offsetAt(const QByteArray &bytes, qsizetype offset) const
    {
        return m_isBig ? at<quint64>(bytes, offset) : at<quint32>(bytes, offset);
    }

    bool isBig() const { return m_isBig; }
    int offsetBytes() const { return m_isBig ? 8 : 4; }

private:
    bool m_isLittle;
    bool m_isBig;
};

/// One field of a directory.
struct TiffField {
    quint64 tag;
    quint64 type;
    quint64 count;
    quint64 firstValue; ///< of short and long types
    quint64 offset;     ///< of values that do not fit into the field
    bool fits;
};

TiffField readField(const FileNumbers &numbers, const QByteArray &directory, qsizetype at)
{
    TiffField field = {};
    field.tag = numbers.at<quint16>(directory, at);
    field.type = numbers.at<quint16>(directory, at + 2);
    field.count = numbers.offsetAt(directory, at + 4);
    const qsizetype value = at + 4 + numbers.offsetBytes();
    field.offset = numbers.offsetAt(directory, value);
    const quint64 size = field.type == 3 ? 2 : field.type == 4 || field.type == 13 ? 4 : 1;
    field.fits = field.count <= quint64(numbers.offsetBytes()) / size;
    field.firstValue =
        field.type == 3 ? numbers.at<quint16>(directory, value) : numbers.at<quint32>(directory, value);
    return field;
}

QString modelOfPhotometric(quint64 photometric)
{
    switch (photometric) {
    case 0:
    case 1:
        return QStringLiteral("Gray");
    case 5:
        return QStringLiteral("CMYK");
    case 8:
    case 9:
        return QStringLiteral("Lab");
    default:
        return QStringLiteral("RGB");
    }
}

} // namespace

PictureHeader readTiffHeader(QIODevice &device)
{
    PictureHeader header;
    const QByteArray start = readAt(device, 0, 16);
    const bool isLittle = start.startsWith("II");
    if (start.size() < 16 || (!isLittle && !start.startsWith("MM")))
        return header;
    const bool isBig = FileNumbers(isLittle, false).at<quint16>(start, 2) == 43;
    const FileNumbers numbers(isLittle, isBig);
    header.isCameraRaw = start.mid(8, 2) == "CR";
    header.hasAlpha = false;
    const auto position = qint64(isBig ? numbers.at<quint64>(start, 8) : numbers.at<quint32>(start, 4));
    const QByteArray counter = readAt(device, position, isBig ? 8 : 2);
    const quint64 count = isBig ? numbers.at<quint64>(counter, 0) : numbers.at<quint16>(counter, 0);
    const int fieldBytes = isBig ? 20 : 12;
    if (count == 0 || count > 4096)
        return header;
    const QByteArray directory = readAt(device, position + counter.size(), qint64(count) * fieldBytes);
    for (quint64 i = 0; i < count && !directory.isEmpty(); ++i) {
        const TiffField field = readField(numbers, directory, qsizetype(i) * fieldBytes);
        switch (field.tag) {
        case 254: // NewSubfileType: bit 0 is a reduced picture of another one in this file
            header.isCameraRaw = header.isCameraRaw || (field.firstValue & 1) != 0;
            break;
        case 258: { // BitsPerSample
            const QByteArray first = field.fits ? QByteArray() : readAt(device, qint64(field.offset), 2);
            header.depth = int(first.isEmpty() ? field.firstValue : numbers.at<quint16>(first, 0));
            break;
        }
        case 262: // PhotometricInterpretation; a colour filter array, linear raw
            header.isCameraRaw = header.isCameraRaw || field.firstValue == 32803 || field.firstValue == 34892;
            header.colorModel = modelOfPhotometric(field.firstValue);
            break;
        case 338: // ExtraSamples: 1 is premultiplied, 2 straight alpha
            header.hasAlpha = field.fits && (field.firstValue == 1 || field.firstValue == 2);
            break;
        case 34675: // ICC profile
            if (!field.fits && qint64(field.count) <= kMaxProfileBytes)
                header.iccProfile = readAt(device, qint64(field.offset), qint64(field.count));
            break;
        case 50706: // DNGVersion
            header.isCameraRaw = true;
            break;
        default:
            break;
        }
    }
    return header;
}

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
    const QByteArray start = readAt(device, 0, 46);
    const FileNumbers numbers(true, false); // little-endian, and checked against the end
    if (start.size() < 46 || numbers.at<quint32>(start, 14) < 40)
        return header;
    const auto width = qint32(numbers.at<quint32>(start, 18));
    const auto height = qint32(numbers.at<quint32>(start, 22));
    if (height > std::numeric_limits<qint32>::min()) // rows from the top down have a negative count
        header.size = QSize(width, qAbs(height));
    const auto horizontal = qint32(numbers.at<quint32>(start, 38));
    const auto vertical = qint32(numbers.at<quint32>(start, 42));
    if (horizontal > 0 && vertical > 0) {
        header.dpiWidth = horizontal * 0.0254;
        header.dpiHeight = vertical * 0.0254;
    }
    return header;
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/base/forwardbytes.h"
#include "imageio/base/picturefailures.h"
#include "imageio/codecs/codecs.h"

#include <algorithm>
#include <vector>

namespace plexa
{

namespace
{

constexpr int kHeaderBytes = 18;

/// Image types of the "Truevision TGA File Format Specification", version 2.0, without run-length encoding.
enum class Kind { Palette = 1, Color = 2, Gray = 3 };

struct TgaHeader {
    Kind kind = Kind::Color;
    bool isRunLength = false;
    bool isFromTop = false;
    bool isFromRight = false;
    bool hasAlpha = false;
    QSize size;
    int bits = 0;        ///< of a pixel
    int paletteBits = 0; ///< of an entry
    int paletteStart = 0;
    int paletteCount = 0;
    qint64 paletteBytes = 0; ///< in the file, used or not
    int idBytes = 0;         ///< between header and palette

    int pixelBytes() const { return (bits + 7) / 8; }
};

int wordOf(const QByteArray &bytes, qsizetype at)
{
    return uchar(bytes[at]) | uchar(bytes[at + 1]) << 8;
}

bool isColorDepth(int bits)
{
    return bits == 15 || bits == 16 || bits == 24 || bits == 32;
}

Result<TgaHeader> headerOf(const QByteArray &bytes)
{
    if (bytes.size() < kHeaderBytes)
        return fail(PictureFailures::notAPicture());
    TgaHeader header;
    const int type = uchar(bytes[2]);
    const int descriptor = uchar(bytes[17]);
    header.kind = Kind(type & ~8);
    header.isRunLength = (type & 8) != 0;
    header.idBytes = uchar(bytes[0]);
    header.paletteStart = wordOf(bytes, 3);
    header.paletteBits = uchar(bytes[7]);
    const bool hasPalette = bytes[1] == 1;
    header.paletteCount = hasPalette ? wordOf(bytes, 5) : 0;
    header.paletteBytes = qint64(header.paletteCount) * ((header.paletteBits + 7) / 8);
    header.size = QSize(wordOf(bytes, 12), wordOf(bytes, 14));
    header.bits = uchar(bytes[16]);
    header.isFromRight = (descriptor & 0x10) != 0;
    header.isFromTop = (descriptor & 0x20) != 0;
    const int alphaBits = descriptor & 0x0f;
    bool isKnown = (bytes[1] == 0 || hasPalette) && (descriptor & 0xc0) == 0;
    switch (header.kind) {
    case Kind::Palette:
        isKnown = isKnown && header.bits == 8 && header.paletteCount > 0 && isColorDepth(header.paletteBits);
        header.hasAlpha = alphaBits > 0 && header.paletteBits == 32;
        break;
    case Kind::Color:
        isKnown = isKnown && isColorDepth(header.bits);
        header.hasAlpha = (header.bits == 32 && alphaBits == 8) || (header.bits == 16 && alphaBits == 1);
        break;
    case Kind::Gray:
        isKnown = isKnown && (header.bits == 8 || header.bits == 16);
        header.hasAlpha = header.bits == 16 && alphaBits == 8;
        break;
    default:
        isKnown = false;
    }
    // There is no signature: an invalid header probably belongs to another format.
    if (!isKnown || header.size.isEmpty())
        return fail(PictureFailures::notAPicture());
    return header;
}

/// A color of the file, premultiplied.
QRgb colorOf(const uchar *bytes, int bits, bool hasAlpha)
{
    QRgb color = 0;
    if (bits <= 16) { // five bits each, and one for alpha
        const int word = bytes[0] | bytes[1] << 8;
        const auto widened = [](int value) { return (value & 31) << 3 | (value & 31) >> 2; };
        color = qRgba(widened(word >> 10), widened(word >> 5), widened(word), word >> 15 != 0 ? 255 : 0);
    } else {
        color = qRgba(bytes[2], bytes[1], bytes[0], bits == 32 ? bytes[3] : 255);
    }
    return hasAlpha ? qPremultiply(color) : color | 0xff000000;
}

Result<TgaHeader> readCheckedHeader(QIODevice &device, const ReadLimits &limits)
{
    Result<TgaHeader> header = headerOf(device.read(kHeaderBytes));
    if (!header)
        return header;
    if (const auto checked = PictureFailures::checkSize(header->size, limits); !checked)
        return tl::unexpected(checked.error());
    if (const auto checked = PictureFailures::checkMemory(header->size, sizeof(QRgb), limits); !checked)
        return tl::unexpected(checked.error());
    // A run of 128 pixels has one byte more than a pixel.
    const qint64 pixels = qint64(header->size.width()) * header->size.height();
    const qint64 leastBytes =
        header->isRunLength ? pixels / 128 * (1 + header->pixelBytes()) : pixels * header->pixelBytes();
    if (device.size() < kHeaderBytes + header->idBytes + header->paletteBytes + leastBytes)
        return fail(PictureFailures::truncated());
    return header;
}

/// Decodes the whole picture, because most files start with the bottom row.
class TgaDecoder
{
public:
    TgaDecoder(QIODevice &device, const TgaHeader &header)
        : m_device(device)
        , m_header(header)
        , m_bytes(device)
    {
    }

    Result<QImage> decode()
    {
        QImage image(m_header.size, RowFormat{{}, m_header.hasAlpha}.imageFormat());
        if (image.isNull())
            return fail(PictureFailures::outOfMemory());
        m_device.seek(kHeaderBytes);
        m_bytes.skip(m_header.idBytes);
        readPalette();
        auto *const first = reinterpret_cast<QRgb *>(image.bits()); // rows of whole words: no padding
        if (!readPixels(first, first + qint64(image.width()) * image.height()))
            return fail(m_bytes.readFailed() ? PictureFailures::readError(m_device)
                                             : PictureFailures::truncated());
        image.mirror(m_header.isFromRight, !m_header.isFromTop);
        return image;
    }

private:
    bool readPixels(QRgb *next, const QRgb *end)
    {
        while (next < end) {
            const int packet = m_header.isRunLength ? m_bytes.next() : 127;
            if (packet < 0)
                return false;
            // A packet may extend beyond the end of a row, and in faulty files beyond that of the picture.
            const qint64 count = qMin<qint64>((packet & 127) + 1, end - next);
            const bool isRun = (packet & 128) != 0;
            for (qint64 i = 0; i < (isRun ? 1 : count); ++i) {
                if (!readPixel(next[i]))
                    return false;
            }
            if (isRun)
                std::fill_n(next, count, *next);
            next += count;
        }
        return true;
    }

    void readPalette()
    {
        const QByteArray bytes = m_bytes.take(m_header.paletteBytes);
        if (m_header.kind != Kind::Palette)
            return;
        const int entryBytes = (m_header.paletteBits + 7) / 8;
        m_palette.assign(256, 0xff000000); // indices beyond the table are black
        for (int i = 0; i < int(bytes.size()) / entryBytes && m_header.paletteStart + i < 256; ++i)
            m_palette[size_t(m_header.paletteStart + i)] =
                colorOf(reinterpret_cast<const uchar *>(bytes.constData()) + i * entryBytes,
                        m_header.paletteBits, m_header.hasAlpha);
    }

    bool readPixel(QRgb &pixel)
    {
        uchar bytes[4] = {};
        for (int i = 0; i < m_header.pixelBytes(); ++i) {
            const int byte = m_bytes.next();
            if (byte < 0)
                return false;
            bytes[i] = uchar(byte);
        }
        if (m_header.kind == Kind::Gray)
            pixel = qPremultiply(qRgba(bytes[0], bytes[0], bytes[0], m_header.hasAlpha ? bytes[1] : 255));
        else
            pixel = m_header.kind == Kind::Palette ? m_palette[bytes[0]]
                                                   : colorOf(bytes, m_header.bits, m_header.hasAlpha);
        return true;
    }

    QIODevice &m_device;
    const TgaHeader &m_header;
    ForwardBytes m_bytes;
    std::vector<QRgb> m_palette;
};

} // namespace

Result<PictureInfo> readTgaInfo(QIODevice &device, const ReadLimits &limits)
{
    const Result<TgaHeader> header = readCheckedHeader(device, limits);
    if (!header)
        return tl::unexpected(header.error());
    PictureInfo info;
    info.rows = {header->size, header->hasAlpha};
    info.colorModel = header->kind == Kind::Gray ? QStringLiteral("Gray") : QStringLiteral("RGB");
    info.decoderBytes = qint64(header->size.width()) * header->size.height() * qint64(sizeof(QRgb));
    return info;
}

Result<std::unique_ptr<RowReader>> openTgaReader(QIODevice &device, const ReadLimits &limits, int)
{
    const Result<TgaHeader> header = readCheckedHeader(device, limits);
    if (!header)
        return tl::unexpected(header.error());
    Result<QImage> image = TgaDecoder(device, *header).decode();
    if (!image)
        return tl::unexpected(image.error());
    return rowsOfImage(std::move(*image), header->hasAlpha);
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/base/picturefailures.h"
#include "imageio/codecs/codecs.h"
#include "imageio/color/colorquantization.h"

#include <gif_lib.h>

#include <algorithm>
#include <memory>
#include <new>
#include <vector>

namespace plexa
{

namespace
{

constexpr int kMaxSide = 65535;

/// A pixel with less alpha is transparent. The usual 128 would remove faint watermarks and cut shadows;
/// without a bound their last traces would be white.
constexpr int kOpaqueFrom = 16;

struct Target {
    QIODevice *device;
    bool writeFailed = false;

    static int write(GifFileType *gif, const GifByteType *bytes, int count)
    {
        return static_cast<Target *>(gif->UserData)->put(bytes, count) ? count : 0;
    }

    bool put(const void *bytes, qint64 count)
    {
        writeFailed = writeFailed || device->write(static_cast<const char *>(bytes), count) != count;
        return !writeFailed;
    }
};

struct MapFreer {
    void operator()(ColorMapObject *map) const { GifFreeMapObject(map); }
};

/// Writes the blocks of a file of one frame through giflib. After a function has returned false nothing more
/// is written.
class GifEncoder
{
public:
    explicit GifEncoder(QIODevice &device)
        : m_target{&device}
        , m_gif(EGifOpen(&m_target, Target::write, nullptr))
    {
    }

    ~GifEncoder() { finish(); }
    GifEncoder(const GifEncoder &) = delete;
    GifEncoder &operator=(const GifEncoder &) = delete;

    bool start(QSize size, const std::vector<QRgb> &palette)
    {
        const int bits = std::max(1, GifBitSize(int(palette.size())));
        const std::unique_ptr<ColorMapObject, MapFreer> map(GifMakeMapObject(1 << bits, nullptr));
        if (!m_gif || !map)
            return false;
        std::fill_n(map->Colors, map->ColorCount, GifColorType{});
        std::transform(palette.begin(), palette.end(), map->Colors, [](QRgb color) {
            return GifColorType{GifByteType(qRed(color)), GifByteType(qGreen(color)),
                                GifByteType(qBlue(color))};
        });
        EGifSetGifVersion(m_gif, true);
        return EGifPutScreenDesc(m_gif, size.width(), size.height(), 8, 0, map.get()) == GIF_OK;
    }

    bool putComment(const QByteArray &comment)
    {
        return comment.isEmpty() || EGifPutComment(m_gif, comment.constData()) == GIF_OK;
    }

    /// The packet is not divided into parts. A reader that interprets its letters as lengths of parts reaches
    /// the bytes after it, all of which lead to the end.
    bool putXmp(const QByteArray &packet)
    {
        if (packet.isEmpty())
            return true;
        QByteArray ramp(1, '\1');
        for (int byte = 255; byte >= 0; --byte)
            ramp += char(byte);
        return EGifPutExtensionLeader(m_gif, APPLICATION_EXT_FUNC_CODE) == GIF_OK &&
               EGifPutExtensionBlock(m_gif, 11, "XMP DataXMP") == GIF_OK &&
               m_target.put(packet.constData(), packet.size()) &&
               m_target.put(ramp.constData(), ramp.size()) && EGifPutExtensionTrailer(m_gif) == GIF_OK;
    }

    /// @param transparentIndex  NO_TRANSPARENT_COLOR: all are opaque
    bool startFrame(QSize size, int transparentIndex)
    {
        const GraphicsControlBlock control = {DISPOSAL_UNSPECIFIED, false, 0, transparentIndex};
        GifByteType bytes[4] = {};
        if (transparentIndex != NO_TRANSPARENT_COLOR) {
            EGifGCBToExtension(&control, bytes);
            if (EGifPutExtension(m_gif, GRAPHICS_EXT_FUNC_CODE, sizeof bytes, bytes) != GIF_OK)
                return false;
        }
        return EGifPutImageDesc(m_gif, 0, 0, size.width(), size.height(), false, nullptr) == GIF_OK;
    }

    bool putRow(uchar *indices, int width) { return EGifPutLine(m_gif, indices, width) == GIF_OK; }

    bool finish()
    {
        if (m_gif)
            EGifCloseFile(m_gif, nullptr);
        m_gif = nullptr;
        return !m_target.writeFailed;
    }

    bool writeFailed() const { return m_target.writeFailed; }

private:
    Target m_target;
    GifFileType *m_gif;
};

/// Collects the picture and encodes it in finish().
class GifRowWriter final : public RowWriter
{
public:
    GifRowWriter(QIODevice &device, const RowFormat &format, const WriteOptions &options)
        : RowWriter(format)
        , m_device(device)
        , m_xmp(options.xmp)
        , m_comment(options.comment)
    {
    }

    bool allocate()
    {
        const auto pixels = size_t(m_format.size.width()) * size_t(m_format.size.height());
        m_pixels.reset(new (std::nothrow) uchar[4 * pixels]);
        m_next = m_pixels.get();
        try {
            m_isHidden.reserve(m_format.hasAlpha ? pixels : 0);
        } catch (const std::bad_alloc &) {
            return false;
        }
        return m_pixels != nullptr;
    }

    Result<void> finish() override
    {
        Result<IndexedPicture> picture =
            quantizedPicture(m_pixels.get(), m_format.size, m_hidesAny ? 255 : 256);
        m_pixels.reset();
        if (!picture)
            return tl::unexpected(picture.error());
        const int transparentIndex = m_hidesAny ? hidePixels(*picture) : NO_TRANSPARENT_COLOR;
        GifEncoder encoder(m_device);
        const bool isWritten = encoder.start(m_format.size, picture->palette) && encoder.putXmp(m_xmp) &&
                               encoder.putComment(m_comment) &&
                               encoder.startFrame(m_format.size, transparentIndex) &&
                               putRows(encoder, picture->indices.get()) && encoder.finish();
        if (isWritten)
            return {};
        return fail(encoder.writeFailed() ? PictureFailures::writeError(m_device)
                                          : PictureFailures::outOfMemory());
    }

private:
    Result<void> encodeRows(const QImage &strip, int count) override
    {
        for (int row = 0; row < count; ++row) {
            const auto *pixels = reinterpret_cast<const QRgb *>(strip.constScanLine(row));
            for (int x = 0; x < strip.width(); ++x)
                addPixel(m_format.hasAlpha ? pixels[x] : pixels[x] | 0xff000000);
        }
        return {};
    }

    /// The palette is chosen for the picture on white: shadows and smooth edges fade into most pages.
    void addPixel(QRgb color)
    {
        const bool isHidden = qAlpha(color) < kOpaqueFrom;
        if (isHidden)
            color = 0;
        const int white = 255 - qAlpha(color);
        *m_next++ = uchar(qRed(color) + white);
        *m_next++ = uchar(qGreen(color) + white);
        *m_next++ = uchar(qBlue(color) + white);
        *m_next++ = 255;
        if (m_format.hasAlpha)
            m_isHidden.push_back(isHidden);
        m_hidesAny = m_hidesAny || isHidden;
    }

    /// @return the index of a new entry for the hidden pixels
    int hidePixels(IndexedPicture &picture) const
    {
        const auto index = uchar(picture.palette.size());
        picture.palette.push_back(qRgb(255, 255, 255));
        for (size_t i = 0; i < m_isHidden.size(); ++i) {
            if (m_isHidden[i])
                picture.indices[i] = index;
        }
        return index;
    }

    bool putRows(GifEncoder &encoder, uchar *indices) const
    {
        const int width = m_format.size.width();
        for (int row = 0; row < m_format.size.height(); ++row, indices += width) {
            if (!encoder.putRow(indices, width))
                return false;
        }
        return true;
    }

    QIODevice &m_device;
    const QByteArray m_xmp;
    const QByteArray m_comment;
    std::unique_ptr<uchar[]> m_pixels; ///< for quantizedPicture()
    uchar *m_next = nullptr;           ///< in these
    std::vector<bool> m_isHidden;      ///< each pixel, if the rows have alpha
    bool m_hidesAny = false;
};

} // namespace

Result<std::unique_ptr<RowWriter>> openGifWriter(QIODevice &device, const RowFormat &format,
                                                 const WriteOptions &options)
{
    const QSize size = format.size;
    if (size.width() > kMaxSide || size.height() > kMaxSide ||
        qint64(size.width()) * size.height() > maxQuantizedPixels())
        return fail(PictureFailures::tooLargeToWrite("GIF"));
    auto writer = std::make_unique<GifRowWriter>(device, format, options);
    if (!writer->allocate())
        return fail(PictureFailures::outOfMemory());
    return writer;
}

qint64 gifWriterBytes(const RowFormat &format, const WriteOptions &)
{
    const qint64 pixels = qint64(format.size.width()) * format.size.height();
    return 4 * pixels + (format.hasAlpha ? pixels / 8 : 0) + quantizingBytes(format.size);
}

} // namespace plexa

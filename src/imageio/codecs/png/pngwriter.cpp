// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/base/picturefailures.h"
#include "imageio/codecs/codecs.h"
#include "imageio/codecs/jpeg/thumbnail.h"
#include "imageio/codecs/png/pngerrors.h"
#include "imageio/color/colorprofile.h"
#include "imageio/container/imageresources.h"

#include <QtEndian>

#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

namespace plexa
{

namespace
{

constexpr bool kIsLittleEndian = Q_BYTE_ORDER == Q_LITTLE_ENDIAN;

struct Target {
    QIODevice *device;
    bool writeFailed;

    static void write(png_structp png, png_bytep bytes, size_t count)
    {
        auto *target = static_cast<Target *>(png_get_io_ptr(png));
        if (target->device->write(reinterpret_cast<const char *>(bytes), qint64(count)) != qint64(count)) {
            target->writeFailed = true;
            png_error(png, "");
        }
    }
};

/// The common text form of IPTC in a PNG: name, length, and the bytes in hexadecimal lines.
QByteArray rawProfileText(const QByteArray &resources)
{
    QByteArray text = "\niptc\n" + QByteArray::number(resources.size()).rightJustified(8) + '\n';
    const QByteArray digits = resources.toHex();
    for (qsizetype at = 0; at < digits.size(); at += 72)
        text += digits.mid(at, 72) + '\n';
    return text;
}

/// Owns the texts that the encoder points to.
class TextChunks
{
public:
    void add(int compression, const QByteArray &keyword, const QByteArray &text)
    {
        if (!text.isEmpty())
            m_chunks.push_back({compression, keyword, text});
    }

    /// Latin-1 if possible: fewer programs read the chunks with UTF-8.
    void add(const PngText &text)
    {
        const bool isLatin1 = std::all_of(text.text.begin(), text.text.end(), [](QChar letter) {
            const ushort code = letter.unicode();
            return code == '\n' || (code >= 0x20 && code <= 0x7E) || (code >= 0xA0 && code <= 0xFF);
        });
        if (isLatin1)
            add(PNG_TEXT_COMPRESSION_NONE, text.keyword, text.text.toLatin1());
        else
            add(PNG_ITXT_COMPRESSION_NONE, text.keyword, text.text.toUtf8());
    }

    /// Valid until this object changes.
    std::vector<png_text> entries()
    {
        std::vector<png_text> entries;
        for (Chunk &chunk : m_chunks) {
            png_text entry = {};
            entry.compression = chunk.compression;
            entry.key = chunk.keyword.data();
            entry.text = chunk.text.data();
            (chunk.compression >= PNG_ITXT_COMPRESSION_NONE ? entry.itxt_length : entry.text_length) =
                size_t(chunk.text.size());
            entry.lang = m_none;
            entry.lang_key = m_none;
            entries.push_back(entry);
        }
        return entries;
    }

private:
    struct Chunk {
        int compression;
        QByteArray keyword;
        QByteArray text;
    };
    std::vector<Chunk> m_chunks;
    char m_none[1] = "";
};

/// Runs libpng's encoder. The functions that call it own no object whose destructor a jump would skip; after
/// one has returned false the encoder must not be used.
class PngEncoder
{
public:
    PngEncoder(QIODevice &device, const RowFormat &format)
        : m_format(format)
        , m_target{&device, false}
    {
    }

    ~PngEncoder() { png_destroy_write_struct(&m_png, &m_info); }
    PngEncoder(const PngEncoder &) = delete;
    PngEncoder &operator=(const PngEncoder &) = delete;

    bool start(const QByteArray &icc, const WriteOptions &options, png_textp texts, int textCount)
    {
        m_png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &m_errors, PngErrors::onError,
                                        PngErrors::onWarning);
        if (!m_png)
            return false;
        if (setjmp(m_errors.jump))
            return false;
        m_info = png_create_info_struct(m_png);
        if (!m_info)
            return false;
        png_set_write_fn(m_png, &m_target, Target::write, nullptr);
        png_set_user_limits(m_png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
        png_set_IHDR(m_png, m_info, png_uint_32(m_format.size.width()), png_uint_32(m_format.size.height()),
                     8, m_format.hasAlpha ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                     PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        setEffort();
        png_set_iCCP(m_png, m_info, "sRGB IEC61966-2.1", PNG_COMPRESSION_TYPE_BASE,
                     reinterpret_cast<png_const_bytep>(icc.constData()), png_uint_32(icc.size()));
        if (options.dpi[0] > 0 && options.dpi[1] > 0 && options.dpi[0] < 1e6 && options.dpi[1] < 1e6)
            png_set_pHYs(m_png, m_info, png_uint_32(std::lround(options.dpi[0] / 0.0254)),
                         png_uint_32(std::lround(options.dpi[1] / 0.0254)), PNG_RESOLUTION_METER);
        if (textCount > 0)
            png_set_text(m_png, m_info, texts, textCount);
        png_write_info(m_png, m_info);
        if (!options.exif.isEmpty()) {
            m_exifPosition = m_target.device->pos() + 8;
            png_write_chunk(m_png, reinterpret_cast<png_const_bytep>("eXIf"),
                            reinterpret_cast<png_const_bytep>(options.exif.constData()),
                            size_t(options.exif.size()));
        }
        if (kIsLittleEndian)
            png_set_bgr(m_png);
        if (m_format.hasAlpha) {
            if (!kIsLittleEndian)
                png_set_swap_alpha(m_png);
        } else {
            png_set_filler(m_png, 0, kIsLittleEndian ? PNG_FILLER_AFTER : PNG_FILLER_BEFORE);
        }
        return true;
    }

    bool writeRow(png_const_bytep row)
    {
        if (setjmp(m_errors.jump))
            return false;
        png_write_row(m_png, row);
        return true;
    }

    bool finish()
    {
        if (setjmp(m_errors.jump))
            return false;
        png_write_end(m_png, nullptr);
        return true;
    }

    /// The position of the EXIF chunk's contents in the file.
    qint64 exifPosition() const { return m_exifPosition; }
    bool writeFailed() const { return m_target.writeFailed; }

private:
    void setEffort()
    {
        // Measured on photographs: a third of the time of zlib's usual level with all filters; the files
        // are a twentieth larger. The costly Paeth filter gains nothing more.
        png_set_compression_level(m_png, 4);
        png_set_filter(m_png, PNG_FILTER_TYPE_BASE, PNG_FILTER_SUB | PNG_FILTER_UP);
        png_set_compression_buffer_size(m_png, 128 * 1024);
    }

    const RowFormat m_format;
    PngErrors m_errors;
    Target m_target;
    png_structp m_png = nullptr;
    png_infop m_info = nullptr;
    qint64 m_exifPosition = -1;
};

class PngRowWriter final : public RowWriter
{
public:
    PngRowWriter(QIODevice &device, const RowFormat &format, const WriteOptions &options)
        : RowWriter(format)
        , m_device(device)
        , m_encoder(device, format)
        , m_exif(options.exif)
        , m_thumbnailOffset(options.thumbnailPlaceholder.isEmpty()
                                ? -1
                                : options.exif.indexOf(options.thumbnailPlaceholder))
        , m_thumbnailBytes(options.thumbnailPlaceholder.size())
    {
        if (m_thumbnailOffset >= 0)
            m_thumbnail.emplace(format.size);
        if (format.hasAlpha)
            m_straight.resize(size_t(format.size.width()));
    }

    Result<void> start(const WriteOptions &options)
    {
        TextChunks chunks;
        chunks.add(PNG_ITXT_COMPRESSION_NONE, "XML:com.adobe.xmp", options.xmp);
        const QByteArray resources = imageResourceBlocks(options.iptc, options.imageResources);
        if (!resources.isEmpty())
            chunks.add(PNG_TEXT_COMPRESSION_zTXt, "Raw profile type iptc", rawProfileText(resources));
        chunks.add({"Comment", options.comment.isValidUtf8() ? QString::fromUtf8(options.comment)
                                                             : QString::fromLatin1(options.comment)});
        for (const PngText &text : options.texts)
            chunks.add(text);
        std::vector<png_text> texts = chunks.entries();
        if (!m_encoder.start(srgbProfile(), options, texts.data(), int(texts.size())))
            return failure();
        return {};
    }

    Result<void> finish() override
    {
        if (!m_encoder.finish())
            return failure();
        return m_thumbnail ? putThumbnail() : Result<void>();
    }

private:
    Result<void> encodeRows(const QImage &strip, int count) override
    {
        for (int row = 0; row < count; ++row) {
            const uchar *pixels = strip.constScanLine(row);
            if (m_format.hasAlpha) {
                const auto *from = reinterpret_cast<const QRgb *>(pixels);
                for (size_t x = 0; x < m_straight.size(); ++x)
                    m_straight[x] = qUnpremultiply(from[x]);
                pixels = reinterpret_cast<const uchar *>(m_straight.data());
            }
            if (!m_encoder.writeRow(pixels))
                return failure();
        }
        if (m_thumbnail)
            m_thumbnail->addRows(strip, count);
        return {};
    }

    /// Writes the EXIF chunk's contents and checksum again, now with the thumbnail.
    Result<void> putThumbnail()
    {
        const QByteArray thumbnail = m_thumbnail->jpeg(m_thumbnailBytes);
        if (thumbnail.isEmpty())
            return fail(PictureFailures::outOfMemory());
        m_exif.replace(m_thumbnailOffset, m_thumbnailBytes, thumbnail);
        uLong sum = crc32(0, reinterpret_cast<const Bytef *>("eXIf"), 4);
        sum = crc32(sum, reinterpret_cast<const Bytef *>(m_exif.constData()), uInt(m_exif.size()));
        QByteArray bytes = m_exif + QByteArray(4, '\0');
        qToBigEndian(quint32(sum), bytes.data() + m_exif.size());
        const qint64 end = m_device.pos();
        if (!m_device.seek(m_encoder.exifPosition()) || m_device.write(bytes) != bytes.size() ||
            !m_device.seek(end))
            return fail(PictureFailures::writeError(m_device));
        return {};
    }

    tl::unexpected<Error> failure() const
    {
        // Any size that can be read can be written, so libpng's other failures are lack of memory.
        return fail(m_encoder.writeFailed() ? PictureFailures::writeError(m_device)
                                            : PictureFailures::outOfMemory());
    }

    QIODevice &m_device;
    PngEncoder m_encoder;
    QByteArray m_exif;
    const qsizetype m_thumbnailOffset;
    const qsizetype m_thumbnailBytes;
    std::optional<ThumbnailMaker> m_thumbnail;
    std::vector<QRgb> m_straight; ///< one row without premultiplication
};

} // namespace

Result<std::unique_ptr<RowWriter>> openPngWriter(QIODevice &device, const RowFormat &format,
                                                 const WriteOptions &options)
{
    auto writer = std::make_unique<PngRowWriter>(device, format, options);
    if (const auto started = writer->start(options); !started)
        return tl::unexpected(started.error());
    return writer;
}

} // namespace plexa

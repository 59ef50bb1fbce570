// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/base/picturefailures.h"
#include "imageio/codecs/codecs.h"
#include "imageio/color/colorprofile.h"
#include "imageio/container/tiffdirectory.h"
#include "imageio/embedded/exif/embeddedpictures.h"

#include <tiffio.h>

#include <cmath>
#include <cstdarg>
#include <limits>
#include <memory>
#include <new>

namespace plexa
{

namespace
{

/// Approximate size of a decoded strip: enough to compress well, small enough to be read in pieces.
constexpr qint64 kStripBytes = 128 * 1024;

/// The limit of 32-bit offsets.
constexpr qint64 kMaxFileBytes = 0xFFFF'FFFF;

constexpr qsizetype kHeaderBytes = 8;
constexpr quint16 kByte = 1;
constexpr quint16 kUndefined = 7;

constexpr bool kIsLittleEndian = Q_BYTE_ORDER == Q_LITTLE_ENDIAN;

/// The device as libtiff writes to it. After startDirectory() libtiff writes its directory into memory, where
/// it is completed before it goes to the device.
class TiffOutput
{
public:
    explicit TiffOutput(QIODevice &device)
        : m_device(device)
    {
    }

    /// Appends bytes at an even position. @return the position; 0 on failure
    qint64 append(const QByteArray &bytes)
    {
        const qint64 at = m_size + m_size % 2;
        if (m_size % 2 != 0 && !put(m_size, "", 1))
            return 0;
        return put(at, bytes.constData(), bytes.size()) ? at : 0;
    }

    bool put(qint64 at, const char *bytes, qint64 count)
    {
        if ((m_device.pos() != at && !m_device.seek(at)) || m_device.write(bytes, count) != count) {
            m_writeFailed = true;
            return false;
        }
        m_size = qMax(m_size, at + count);
        return true;
    }

    void startDirectory() { m_directoryStart = m_size; }

    /// Further writes of libtiff are ignored.
    void close() { m_isClosed = true; }

    /// Output of libtiff since startDirectory(): its position in the file, its bytes, and the position in the
    /// file of the directory among them.
    qint64 directoryStart() const { return m_directoryStart; }
    QByteArray &directoryBytes() { return m_directoryBytes; }
    qint64 directoryPlace(TiffOrder order) const { return tiffNumberAt(m_link, 4, order); }

    qint64 size() const { return m_size; }
    bool writeFailed() const { return m_writeFailed; }

    static tmsize_t write(thandle_t handle, void *bytes, tmsize_t count)
    {
        auto *output = static_cast<TiffOutput *>(handle);
        const qint64 at = output->m_position;
        output->m_position += count;
        if (output->m_isClosed)
            return count;
        if (output->m_directoryStart < 0)
            return output->put(at, static_cast<const char *>(bytes), count) ? count : -1;
        if (at < output->m_directoryStart) {
            if (at != 4 || count != qsizetype(sizeof output->m_link))
                return -1;
            std::copy_n(static_cast<const char *>(bytes), count, output->m_link);
            return count;
        }
        const qsizetype begin = at - output->m_directoryStart;
        QByteArray &kept = output->m_directoryBytes;
        if (kept.size() < begin + count)
            kept.append(QByteArray(begin + count - kept.size(), '\0'));
        std::copy_n(static_cast<const char *>(bytes), count, kept.begin() + begin);
        return count;
    }

    static toff_t seek(thandle_t handle, toff_t offset, int whence)
    {
        auto *output = static_cast<TiffOutput *>(handle);
        const quint64 base = whence == SEEK_SET   ? 0
                             : whence == SEEK_CUR ? quint64(output->m_position)
                                                  : sizeOf(handle);
        const quint64 position = base + offset; // a negative offset wraps around
        if (position > quint64(std::numeric_limits<qint64>::max()))
            return toff_t(-1);
        output->m_position = qint64(position);
        return position;
    }

    static toff_t sizeOf(thandle_t handle)
    {
        auto *output = static_cast<TiffOutput *>(handle);
        return toff_t(output->m_size + output->m_directoryBytes.size());
    }

private:
    QIODevice &m_device;
    qint64 m_position = 0; ///< as libtiff sees it
    qint64 m_size = 0;     ///< of the device
    qint64 m_directoryStart = -1;
    QByteArray m_directoryBytes;
    char m_link[4] = {};
    bool m_writeFailed = false;
    bool m_isClosed = false;
};

/// EXIF as a part of the file: the structure keeps its offsets, so that pointers into it, above all those of
/// maker notes, remain valid; its main directory becomes part of the file's.
class EmbeddedStructure
{
public:
    explicit EmbeddedStructure(const QByteArray &exif)
    {
        const auto order = orderOfTiff(exif);
        if (!order)
            return;
        const quint32 at = tiffNumberAt(exif.constData() + 4, 4, *order);
        const auto fields = readTiffFields(exif, at, *order);
        if (!fields || at < kHeaderBytes)
            return;
        m_order = *order;
        m_bytes = exif;
        wipe(at, 2 + 12 * tiffNumberAt(exif.constData() + at, 2, m_order) + 4);
        for (auto field = fields->begin(); field != fields->end(); ++field) {
            const bool isPointer = field.key() == TIFFTAG_EXIFIFD || field.key() == TIFFTAG_GPSIFD;
            const quint64 bytes = isPointer ? 2 : field->valueBytes();
            const quint64 offset = field->offset(m_order);
            const bool isElsewhere = isPointer || bytes > 4;
            const bool isInside = !isElsewhere || (offset >= quint64(kHeaderBytes) &&
                                                   offset + bytes <= quint64(m_bytes.size()));
            if (bytes == 0 || !isInside)
                continue;
            if (!isPictureStructureTag(field.key()))
                m_fields.insert(field.key(), *field);
            else if (isElsewhere)
                wipe(qsizetype(offset), qsizetype(bytes));
        }
    }

    TiffOrder order() const { return m_order; }

    QByteArray bytes() const { return m_bytes.mid(kHeaderBytes); }

    /// The main directory without the fields that describe the pixels of another file.
    const TiffFields &fields() const { return m_fields; }

    /// Does it state this resolution?
    bool hasResolution(double perInchAcross, double perInchDown) const
    {
        const quint32 unit = m_fields.value(TIFFTAG_RESOLUTIONUNIT).type == 3
                                 ? tiffNumberAt(m_fields[TIFFTAG_RESOLUTIONUNIT].value, 2, m_order)
                                 : RESUNIT_INCH;
        const double factor = unit == RESUNIT_CENTIMETER ? 2.54 : 1;
        const auto isSame = [&](quint16 tag, double wanted) {
            const double is = rational(tag) * factor;
            return is > 0 && (wanted <= 0 || std::abs(is - wanted) < 0.001 * wanted);
        };
        return isSame(TIFFTAG_XRESOLUTION, perInchAcross) && isSame(TIFFTAG_YRESOLUTION, perInchDown);
    }

private:
    void wipe(qsizetype at, qsizetype count)
    {
        std::fill_n(m_bytes.begin() + at, qMin(count, m_bytes.size() - at), '\0');
    }

    double rational(quint16 tag) const
    {
        const TiffField field = m_fields.value(tag);
        if (field.type != 5 || field.count != 1)
            return 0;
        const char *value = m_bytes.constData() + field.offset(m_order);
        const quint32 divisor = tiffNumberAt(value + 4, 4, m_order);
        return divisor == 0 ? 0 : tiffNumberAt(value, 4, m_order) / double(divisor);
    }

    TiffOrder m_order = kIsLittleEndian ? TiffOrder::LittleEndian : TiffOrder::BigEndian;
    QByteArray m_bytes;
    TiffFields m_fields;
};

struct TiffCloser {
    void operator()(TIFF *tiff) const { TIFFCleanup(tiff); }
};

qint64 rowBytesOf(const RowFormat &format)
{
    return qint64(format.size.width()) * (format.hasAlpha ? 4 : 3);
}

qint64 rowsPerStrip(const RowFormat &format)
{
    return qBound(qint64(1), kStripBytes / rowBytesOf(format), qint64(format.size.height()));
}

class TiffRowWriter final : public RowWriter
{
public:
    TiffRowWriter(QIODevice &device, const RowFormat &format, const WriteOptions &options)
        : RowWriter(format)
        , m_device(device)
        , m_output(device)
        , m_rowBytes(rowBytesOf(format))
        , m_rowsPerStrip(rowsPerStrip(format))
        , m_structure(options.exif)
    {
    }

    ~TiffRowWriter() override { m_output.close(); }

    Result<void> start(const WriteOptions &options)
    {
        if (!options.tiffLzw && m_rowBytes * m_format.size.height() > kMaxFileBytes)
            return fail(PictureFailures::tooLargeToWrite("TIFF"));
        m_strip.reset(new (std::nothrow) uchar[size_t(m_rowBytes * m_rowsPerStrip)]);
        TIFFOpenOptions *open = m_strip ? TIFFOpenOptionsAlloc() : nullptr;
        if (!open)
            return fail(PictureFailures::outOfMemory());
        TIFFOpenOptionsSetErrorHandlerExtR(open, stayQuiet, nullptr);
        TIFFOpenOptionsSetWarningHandlerExtR(open, stayQuiet, nullptr);
        m_tiff.reset(TIFFClientOpenExt(
            "", m_structure.order() == TiffOrder::BigEndian ? "wbm" : "wlm", &m_output,
            [](thandle_t, void *, tmsize_t) { return tmsize_t(-1); }, TiffOutput::write, TiffOutput::seek,
            [](thandle_t) { return 0; }, TiffOutput::sizeOf, nullptr, nullptr, open));
        TIFFOpenOptionsFree(open);
        if (!m_tiff || !describePicture(options) || !putMetadata(options))
            return failure();
        return {};
    }

    Result<void> finish() override
    {
        m_output.startDirectory();
        if (TIFFWriteDirectory(m_tiff.get()) != 1 || !putDirectory())
            return failure();
        m_output.close();
        return {};
    }

private:
    Result<void> encodeRows(const QImage &strip, int count) override
    {
        for (int row = 0; row < count; ++row) {
            putRow(reinterpret_cast<const QRgb *>(strip.constScanLine(row)),
                   m_strip.get() + m_rowBytes * m_rowsInStrip);
            ++m_rowsInStrip;
            const bool isLast = rowsWritten() + row + 1 == m_format.size.height();
            if ((m_rowsInStrip == m_rowsPerStrip || isLast) && !writeStrip())
                return failure();
        }
        return {};
    }

    static int stayQuiet(TIFF *, void *, const char *, const char *, va_list) { return 1; }

    bool describePicture(const WriteOptions &options)
    {
        TIFF *tiff = m_tiff.get();
        const auto set = [tiff](ttag_t tag, auto value) { return TIFFSetField(tiff, tag, value) == 1; };
        bool isSet =
            set(TIFFTAG_IMAGEWIDTH, quint32(m_format.size.width())) &&
            set(TIFFTAG_IMAGELENGTH, quint32(m_format.size.height())) && set(TIFFTAG_BITSPERSAMPLE, 8) &&
            set(TIFFTAG_SAMPLESPERPIXEL, m_format.hasAlpha ? 4 : 3) &&
            set(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB) && set(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) &&
            set(TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT) &&
            set(TIFFTAG_ROWSPERSTRIP, quint32(m_rowsPerStrip)) &&
            set(TIFFTAG_COMPRESSION, options.tiffLzw ? COMPRESSION_LZW : COMPRESSION_NONE);
        if (options.tiffLzw)
            isSet = isSet && set(TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
        if (m_format.hasAlpha) {
            // The rows are premultiplied: division would lose precision.
            constexpr quint16 kKind = EXTRASAMPLE_ASSOCALPHA;
            isSet = isSet && TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &kKind) == 1;
        }
        const double *dpi = options.dpi;
        if (m_structure.hasResolution(dpi[0], dpi[1]))
            return isSet;
        // Required in a TIFF; EXIF 2.3 specifies 72 if it is unknown.
        const bool isKnown = dpi[0] > 0 && dpi[1] > 0 && dpi[0] < 1e6 && dpi[1] < 1e6;
        return isSet && set(TIFFTAG_XRESOLUTION, isKnown ? dpi[0] : 72.0) &&
               set(TIFFTAG_YRESOLUTION, isKnown ? dpi[1] : 72.0) && set(TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    }

    bool putMetadata(const WriteOptions &options)
    {
        const QByteArray structure = m_structure.bytes();
        if (!structure.isEmpty() && m_output.append(structure) != kHeaderBytes)
            return false;
        // Some readers swap the bytes of IPTC that is written as numbers of four bytes.
        return putBlock(TIFFTAG_XMLPACKET, kByte, options.xmp) &&
               putBlock(TIFFTAG_RICHTIFFIPTC, kUndefined, options.iptc) &&
               putBlock(TIFFTAG_PHOTOSHOP, kByte, options.imageResources) &&
               putBlock(TIFFTAG_ICCPROFILE, kUndefined, srgbProfile());
    }

    bool putBlock(quint16 tag, quint16 type, const QByteArray &bytes)
    {
        if (bytes.size() <= 4) // too few for any of them
            return true;
        const qint64 at = m_output.append(bytes);
        TiffField field{type, quint32(bytes.size()), QByteArray(4, '\0')};
        putTiffNumber(field.value.data(), quint32(at), 4, m_structure.order());
        m_blocks.insert(tag, field);
        return at > 0 && at + bytes.size() <= kMaxFileBytes;
    }

    void putRow(const QRgb *pixels, uchar *out) const
    {
        const int width = m_format.size.width();
        for (int x = 0; x < width; ++x) {
            *out++ = uchar(qRed(pixels[x]));
            *out++ = uchar(qGreen(pixels[x]));
            *out++ = uchar(qBlue(pixels[x]));
            if (m_format.hasAlpha)
                *out++ = uchar(qAlpha(pixels[x]));
        }
    }

    bool writeStrip()
    {
        const tmsize_t bytes = m_rowBytes * m_rowsInStrip;
        m_rowsInStrip = 0;
        return TIFFWriteEncodedStrip(m_tiff.get(), m_stripsWritten++, m_strip.get(), bytes) == bytes;
    }

    /// Adds the metadata to libtiff's directory and writes it to the file.
    bool putDirectory()
    {
        const TiffOrder order = m_structure.order();
        QByteArray &bytes = m_output.directoryBytes();
        const qint64 at = m_output.directoryPlace(order) - m_output.directoryStart();
        const auto own = at >= 0 ? readTiffFields(bytes, quint32(at), order) : std::nullopt;
        if (!own)
            return false;
        std::fill_n(bytes.begin() + at, tiffDirectoryBytes(own->size()), '\0');
        TiffFields fields = m_structure.fields();
        fields.insert(m_blocks);
        fields.insert(*own);
        if (!m_output.put(m_output.directoryStart(), bytes.constData(), bytes.size()))
            return false;
        const qint64 place = m_output.append(encodedTiffFields(fields, order));
        char link[4];
        putTiffNumber(link, quint32(place), 4, order);
        return place > 0 && m_output.size() <= kMaxFileBytes && m_output.put(4, link, sizeof link) &&
               m_device.seek(m_output.size());
    }

    tl::unexpected<Error> failure() const
    {
        return fail(m_output.writeFailed() ? PictureFailures::writeError(m_device)
                                           : PictureFailures::tooLargeToWrite("TIFF"));
    }

    QIODevice &m_device;
    TiffOutput m_output;
    const qint64 m_rowBytes;
    const qint64 m_rowsPerStrip;
    const EmbeddedStructure m_structure;
    TiffFields m_blocks; ///< XMP, IPTC and the profile
    std::unique_ptr<uchar[]> m_strip;
    qint64 m_rowsInStrip = 0;
    quint32 m_stripsWritten = 0;
    std::unique_ptr<TIFF, TiffCloser> m_tiff; // last: it is freed first
};

} // namespace

Result<std::unique_ptr<RowWriter>> openTiffWriter(QIODevice &device, const RowFormat &format,
                                                  const WriteOptions &options)
{
    auto writer = std::make_unique<TiffRowWriter>(device, format, options);
    if (const auto started = writer->start(options); !started)
        return tl::unexpected(started.error());
    return writer;
}

qint64 tiffWriterBytes(const RowFormat &format, const WriteOptions &)
{
    // A strip, the predictor's copy and the encoder's output; a row may be long.
    const qint64 strip = rowBytesOf(format) * rowsPerStrip(format);
    return strip > 2 * kStripBytes ? 3 * strip : 0;
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/base/picturefailures.h"
#include "imageio/codecs/codecs.h"
#include "imageio/codecs/jpeg/jpegerrors.h"
#include "imageio/codecs/jpeg/jpegstructure.h"
#include "imageio/color/colorprofile.h"
#include "imageio/color/rowconversion.h"
#include "metadata/propertykeys.h"

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

namespace plexa
{

namespace
{

constexpr J_COLOR_SPACE kRgb32 = Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? JCS_EXT_BGRA : JCS_EXT_ARGB;

/// Rows that are decoded and converted at a time: few enough for the processor's cache.
constexpr int kRowsAtATime = 16;

/// Bound of the work for the scans of a progressive picture. Real files have 10 to 20 scans; a few thousand
/// short ones would keep a machine busy for hours.
constexpr qint64 kMaxScannedPixels = 20'000'000'000;
constexpr int kScansAlwaysAllowed = 20;

/// A complete file may lack its end marker, but has hardly a byte in its place. A file whose end was never
/// stored has zeros there, which decode to gray areas without a complaint.
constexpr long kMaxStrayBytes = 16;

/// libjpeg's input: large reads from a device. At the end of the file it supplies an end marker; the decoder
/// then notices whether data are missing.
struct Source {
    jpeg_source_mgr manager;
    QIODevice *device;
    bool reachedEnd;
    bool readFailed;
    std::array<JOCTET, 256 * 1024> buffer;

    void attach(QIODevice &from)
    {
        device = &from;
        reachedEnd = readFailed = false;
        manager.next_input_byte = nullptr;
        manager.bytes_in_buffer = 0;
        manager.init_source = [](j_decompress_ptr) {};
        manager.term_source = [](j_decompress_ptr) {};
        manager.resync_to_restart = jpeg_resync_to_restart;
        manager.fill_input_buffer = [](j_decompress_ptr info) -> boolean {
            reinterpret_cast<Source *>(info->src)->fill();
            return TRUE;
        };
        manager.skip_input_data = [](j_decompress_ptr info, long count) {
            reinterpret_cast<Source *>(info->src)->skip(count);
        };
    }

    void fill()
    {
        const qint64 got = device->read(reinterpret_cast<char *>(buffer.data()), qint64(buffer.size()));
        if (got > 0) {
            manager.bytes_in_buffer = size_t(got);
        } else {
            readFailed = readFailed || got < 0;
            reachedEnd = true;
            buffer[0] = 0xff;
            buffer[1] = JPEG_EOI;
            manager.bytes_in_buffer = 2;
        }
        manager.next_input_byte = buffer.data();
    }

    void skip(long count)
    {
        if (count <= 0)
            return;
        if (size_t(count) <= manager.bytes_in_buffer) {
            manager.next_input_byte += count;
            manager.bytes_in_buffer -= size_t(count);
            return;
        }
        device->skip(qint64(count) - qint64(manager.bytes_in_buffer));
        manager.bytes_in_buffer = 0;
    }
};

class JpegRowReader final : public RowReader
{
public:
    JpegRowReader(QIODevice &device, QByteArray iccProfile, const ReadLimits &limits)
        : m_device(device)
        , m_iccProfile(std::move(iccProfile))
        , m_limits(limits)
    {
        m_info = {};
    }

    ~JpegRowReader() override { jpeg_destroy_decompress(&m_info); }

    Result<void> open(int reduction)
    {
        m_source.attach(m_device);
        if (!readHeader())
            return failure();
        const QSize size(int(m_info.image_width), int(m_info.image_height));
        if (const auto checked = PictureFailures::checkSize(size, m_limits); !checked)
            return checked;
        if (const auto checked = checkCoefficients(size); !checked)
            return checked;
        m_info.scale_num = 1;
        m_info.scale_denom = unsigned(reduction);
        chooseColors();
        m_info.out_color_space = m_outSpace;
        if (!computeOutput())
            return failure();
        m_format.size = QSize(int(m_info.output_width), int(m_info.output_height));
        m_colors.emplace(m_layout, PictureColors{m_iccProfile, {}}, m_format.size.width());
        m_buffer.resize(size_t(m_info.output_width) * size_t(m_bytesPerPixel) * kRowsAtATime);
        return {};
    }

    QString notice() const override
    {
        if (m_lacksLastStep)
            return PictureFailures::lacksLastScan();
        return m_errors.strayBytes > m_strayBytesBefore ? PictureFailures::mayBeDamaged() : QString();
    }

private:
    Result<void> decodeRows(uchar *bits, qsizetype stride, int count) override
    {
        if (!m_isStarted && !start())
            return failure();
        for (int row = 0; row < count;) {
            const int rows = qMin(count - row, kRowsAtATime);
            uchar *target = bits + row * stride;
            for (int i = 0; i < rows; ++i)
                m_rows[size_t(i)] = m_buffer.empty()
                                        ? target + i * stride
                                        : m_buffer.data() + size_t(i) * m_buffer.size() / kRowsAtATime;
            if (!decode(rows))
                return failure();
            for (int i = 0; i < rows; ++i)
                convertRow(m_rows[size_t(i)], reinterpret_cast<QRgb *>(target + i * stride));
            row += rows;
        }
        if (rowsRead() + count == m_format.size.height() && !hasEnd())
            return fail(PictureFailures::truncated());
        return {};
    }

    // The functions that call libjpeg own no object whose destructor a jump would skip.

    bool readHeader()
    {
        m_info.err = m_errors.attach();
        if (setjmp(m_errors.jump))
            return false;
        jpeg_create_decompress(&m_info);
        m_info.src = &m_source.manager;
        m_info.client_data = this;
        return jpeg_read_header(&m_info, TRUE) == JPEG_HEADER_OK;
    }

    bool computeOutput()
    {
        if (setjmp(m_errors.jump))
            return false;
        jpeg_calc_output_dimensions(&m_info);
        return true;
    }

    bool start()
    {
        m_isStarted = true;
        m_strayBytesBefore = m_errors.strayBytes;
        if (setjmp(m_errors.jump))
            return false;
        m_progress.progress_monitor = [](j_common_ptr info) {
            // Only a decompressor is given this monitor.
            auto *decoder = reinterpret_cast<j_decompress_ptr>(info);
            const qint64 pixels = qint64(decoder->image_width) * decoder->image_height;
            const int scans = decoder->input_scan_number;
            auto *reader = static_cast<JpegRowReader *>(decoder->client_data);
            if (scans > kScansAlwaysAllowed && scans > kMaxScannedPixels / pixels)
                std::longjmp(reader->m_errors.jump, 1);
        };
        m_info.progress = &m_progress;
        return jpeg_start_decompress(&m_info) && !m_errors.isDamaged && hasAllData();
    }

    bool decode(int rows)
    {
        if (setjmp(m_errors.jump))
            return false;
        for (JDIMENSION done = 0; done < JDIMENSION(rows);) {
            const JDIMENSION got =
                jpeg_read_scanlines(&m_info, m_rows.data() + done, JDIMENSION(rows) - done);
            if (got == 0 || m_errors.isDamaged)
                return false;
            done += got;
        }
        // An arithmetic decoder reads missing data as zeros and reports nothing.
        return !(m_info.arith_code && m_source.reachedEnd);
    }

    /// Checks a file that was read to its end before the first row: is every scan present?
    bool hasAllData()
    {
        if (!jpeg_has_multiple_scans(&m_info))
            return true;
        for (int i = 0; i < m_info.num_components; ++i) {
            // Set by a component's first scan.
            m_errors.lacksData = m_errors.lacksData || !m_info.comp_info[i].quant_table;
            // The low bits that each coefficient of a progressive picture lacks; below 0: all.
            for (int k = 0; k < DCTSIZE2 && m_info.coef_bits; ++k) {
                const int lacking = m_info.coef_bits[i][k];
                const bool isLastStep = lacking == 1 && !m_source.reachedEnd;
                m_lacksLastStep = m_lacksLastStep || isLastStep;
                m_errors.lacksData = m_errors.lacksData || (lacking != 0 && !isLastStep);
            }
        }
        return !m_errors.lacksData;
    }

    /// Reads on after the last row: do the data end, or do bytes without meaning go on to the file's end?
    bool hasEnd()
    {
        if (setjmp(m_errors.jump))
            return true; // damage after the picture
        jpeg_finish_decompress(&m_info);
        return !m_source.reachedEnd || m_errors.strayBytes <= kMaxStrayBytes;
    }

    /// libjpeg holds the coefficients of a picture of several scans, two bytes each.
    Result<void> checkCoefficients(QSize size)
    {
        if (!jpeg_has_multiple_scans(&m_info))
            return {};
        qint64 bytes = 0;
        for (int i = 0; i < m_info.num_components; ++i) {
            const jpeg_component_info &component = m_info.comp_info[i];
            bytes += qint64(component.width_in_blocks) * component.height_in_blocks * DCTSIZE2 * 2;
        }
        if (bytes > m_limits.maxBytes)
            return fail(PictureFailures::tooMuchMemory(size, bytes, m_limits));
        return {};
    }

    void chooseColors()
    {
        m_outSpace = kRgb32;
        m_bytesPerPixel = 0; // decoded straight into the strip
        if (m_info.jpeg_color_space == JCS_CMYK || m_info.jpeg_color_space == JCS_YCCK) {
            m_outSpace = JCS_CMYK;
            m_bytesPerPixel = m_layout.samples = 4;
            m_layout.colors = SampleLayout::Colors::Cmyk;
            m_layout.isInverted = m_info.saw_Adobe_marker;
        } else if (m_info.jpeg_color_space == JCS_GRAYSCALE && profileColorModel(m_iccProfile) == u"Gray") {
            m_outSpace = JCS_GRAYSCALE;
            m_bytesPerPixel = m_layout.samples = 1;
            m_layout.colors = SampleLayout::Colors::Gray;
        }
    }

    void convertRow(const uchar *decoded, QRgb *out)
    {
        if (m_bytesPerPixel == 0)
            m_colors->convertPixels(out);
        else
            m_colors->convert(decoded, out);
    }

    tl::unexpected<Error> failure() const
    {
        if (m_source.readFailed)
            return fail(PictureFailures::readError(m_device));
        if (m_errors.isUnsupported)
            return fail(PictureFailures::unsupportedKind("JPEG"));
        if (m_errors.isOutOfMemory)
            return fail(PictureFailures::outOfMemory());
        if (m_errors.lacksData || m_source.reachedEnd)
            return fail(PictureFailures::truncated());
        return fail(PictureFailures::damaged());
    }

    QIODevice &m_device;
    const QByteArray m_iccProfile;
    const ReadLimits m_limits;
    JpegErrors m_errors;
    Source m_source;
    jpeg_decompress_struct m_info;
    jpeg_progress_mgr m_progress = {};
    J_COLOR_SPACE m_outSpace = kRgb32;
    int m_bytesPerPixel = 0;
    SampleLayout m_layout;
    std::optional<RowConversion> m_colors;
    std::vector<uchar> m_buffer; ///< decoded rows that are not QRgb yet
    std::array<JSAMPROW, kRowsAtATime> m_rows = {};
    bool m_isStarted = false;
    long m_strayBytesBefore = 0;  ///< the first scan; they are not of the picture
    bool m_lacksLastStep = false; ///< of a progressive picture, in an otherwise complete file
};

} // namespace

Result<PictureInfo> readJpegInfo(QIODevice &device, const ReadLimits &limits)
{
    Result<JpegStructure> structure = readJpegStructure(device, limits);
    if (!structure)
        return tl::unexpected(structure.error());
    PictureInfo info;
    info.rows = {structure->size, false};
    const qsizetype components = structure->components.size();
    info.colorModel = components == 1   ? QStringLiteral("Gray")
                      : components == 4 ? QStringLiteral("CMYK")
                                        : QStringLiteral("RGB");
    info.iccProfile = structure->iccProfile;
    info.dpiWidth = structure->dpiWidth;
    info.dpiHeight = structure->dpiHeight;
    info.isProgressive = structure->isProgressive;
    QByteArrayList factors;
    for (const JpegStructure::Component &component : structure->components)
        factors.append(QByteArray::number(component.horizontal) + QByteArray::number(component.vertical));
    info.chromaSampling = factors.join(',');
    if (!structure->jfif.isEmpty()) {
        structure->jfif.insert(kCGImagePropertyJFIFIsProgressive, structure->isProgressive);
        info.formatProperties.insert(kCGImagePropertyJFIFDictionary, structure->jfif);
    }
    if (structure->hasSeveralScans)
        info.decoderBytes = coefficientBytes(structure->size, structure->components);
    info.unmarkedPictures = structure->unmarkedPictures;
    return info;
}

Result<std::unique_ptr<RowReader>> openJpegReader(QIODevice &device, const ReadLimits &limits, int reduction)
{
    const Result<JpegStructure> structure = readJpegStructure(device, limits);
    if (!structure)
        return tl::unexpected(structure.error());
    if (!device.seek(0))
        return fail(PictureFailures::readError(device));
    auto reader = std::make_unique<JpegRowReader>(device, structure->iccProfile, limits);
    if (const auto opened = reader->open(reduction); !opened)
        return tl::unexpected(opened.error());
    return reader;
}

} // namespace plexa

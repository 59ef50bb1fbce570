// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/base/picturefailures.h"
#include "imageio/codecs/codecs.h"
#include "imageio/codecs/jpeg/jpeginput.h"
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

class JpegRowReader final : public RowReader
{
public:
    JpegRowReader(QIODevice &device, QByteArray iccProfile, const ReadLimits &limits)
        : m_iccProfile(std::move(iccProfile))
        , m_input(device, limits)
        , m_info(m_input.info())
    {
    }

    Result<void> open(int reduction)
    {
        if (auto read = m_input.readHeader(); !read)
            return read;
        m_info.scale_num = 1;
        m_info.scale_denom = unsigned(reduction);
        chooseColors();
        m_info.out_color_space = m_outSpace;
        if (!computeOutput())
            return m_input.failure();
        m_format.size = QSize(int(m_info.output_width), int(m_info.output_height));
        m_colors.emplace(m_layout, PictureColors{m_iccProfile, {}}, m_format.size.width());
        m_buffer.resize(size_t(m_info.output_width) * size_t(m_bytesPerPixel) * kRowsAtATime);
        return {};
    }

    QString notice() const override { return m_input.notice(); }

private:
    Result<void> decodeRows(uchar *bits, qsizetype stride, int count) override
    {
        if (!m_isStarted && !start())
            return m_input.failure();
        for (int row = 0; row < count;) {
            const int rows = qMin(count - row, kRowsAtATime);
            uchar *target = bits + row * stride;
            for (int i = 0; i < rows; ++i)
                m_rows[size_t(i)] = m_buffer.empty()
                                        ? target + i * stride
                                        : m_buffer.data() + size_t(i) * m_buffer.size() / kRowsAtATime;
            if (!decode(rows))
                return m_input.failure();
            for (int i = 0; i < rows; ++i)
                convertRow(m_rows[size_t(i)], reinterpret_cast<QRgb *>(target + i * stride));
            row += rows;
        }
        const bool isLast = rowsRead() + count == m_format.size.height();
        if (isLast && !m_input.hasEnd([](auto &info) { return jpeg_finish_decompress(&info) == TRUE; }))
            return fail(PictureFailures::truncated());
        return {};
    }

    // The functions that call libjpeg own no object whose destructor a jump would skip.

    bool computeOutput()
    {
        if (setjmp(m_input.errors().jump))
            return false;
        jpeg_calc_output_dimensions(&m_info);
        return true;
    }

    bool start()
    {
        m_isStarted = true;
        m_input.beginPicture();
        if (setjmp(m_input.errors().jump))
            return false;
        m_info.client_data = &m_input;
        m_progress.progress_monitor = [](j_common_ptr info) {
            auto *input = static_cast<JpegInput *>(info->client_data);
            if (input->hasTooManyScans())
                std::longjmp(input->errors().jump, 1);
        };
        m_info.progress = &m_progress;
        return jpeg_start_decompress(&m_info) && m_input.isIntact() && m_input.hasAllScans();
    }

    bool decode(int rows)
    {
        if (setjmp(m_input.errors().jump))
            return false;
        for (JDIMENSION done = 0; done < JDIMENSION(rows);) {
            const JDIMENSION got =
                jpeg_read_scanlines(&m_info, m_rows.data() + done, JDIMENSION(rows) - done);
            if (got == 0 || !m_input.isIntact())
                return false;
            done += got;
        }
        return true;
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

    const QByteArray m_iccProfile;
    JpegInput m_input;
    jpeg_decompress_struct &m_info;
    jpeg_progress_mgr m_progress = {};
    J_COLOR_SPACE m_outSpace = kRgb32;
    int m_bytesPerPixel = 0;
    SampleLayout m_layout;
    std::optional<RowConversion> m_colors;
    std::vector<uchar> m_buffer; ///< decoded rows that are not QRgb yet
    std::array<JSAMPROW, kRowsAtATime> m_rows = {};
    bool m_isStarted = false;
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

// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/jpeg/jpegencoder.h"

#include <jerror.h>

#include <algorithm>

namespace plexa
{

namespace
{

constexpr J_COLOR_SPACE kRgb32 = Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? JCS_EXT_BGRX : JCS_EXT_XRGB;

/// In place of the library's own arrays: asks the supplier of the coefficients.
JBLOCKARRAY accessRows(j_common_ptr info, jvirt_barray_ptr array, JDIMENSION first, JDIMENSION count, boolean)
{
    const int component = *reinterpret_cast<const int *>(array);
    auto *supplier = static_cast<JpegBlockRows *>(info->client_data);
    const JBLOCKARRAY rows = supplier->rowsOf(component, int(first / count));
    if (!rows) {
        info->err->msg_code = JERR_BAD_VIRTUAL_ACCESS;
        info->err->error_exit(info);
    }
    return rows;
}

} // namespace

JpegSampling jpegSamplingFromText(const QByteArray &text)
{
    // Of CMYK, cyan, magenta and yellow count.
    const QByteArrayList planes = text.split(',').mid(0, 3);
    if (planes.size() == 2)
        return {};
    JpegSampling sampling;
    int blocks = 0;
    for (const QByteArray &factors : planes) {
        if (factors.size() != 2)
            return {};
        const JpegStructure::Component plane = {factors[0] - '0', factors[1] - '0'};
        if (plane.horizontal < 1 || plane.horizontal > 4 || plane.vertical < 1 || plane.vertical > 4)
            return {};
        sampling.push_back(plane);
        // libjpeg scales down by whole numbers from the largest factor, which must be luma's.
        const JpegStructure::Component &luma = sampling.front();
        if (luma.horizontal % plane.horizontal != 0 || luma.vertical % plane.vertical != 0)
            return {};
        blocks += plane.horizontal * plane.vertical;
    }
    return blocks <= C_MAX_BLOCKS_IN_MCU ? sampling : JpegSampling();
}

std::array<QuantizationTable, 2> tablesOfQuality(int quality)
{
    JpegErrors errors;
    jpeg_compress_struct info = {};
    info.err = errors.attach();
    std::array<QuantizationTable, 2> tables = {};
    if (!setjmp(errors.jump)) {
        jpeg_create_compress(&info);
        info.in_color_space = JCS_YCbCr;
        info.input_components = 3;
        jpeg_set_defaults(&info);
        jpeg_set_quality(&info, quality, TRUE);
        for (size_t i = 0; i < tables.size(); ++i)
            std::copy_n(info.quant_tbl_ptrs[i]->quantval, DCTSIZE2, tables[i].begin());
    }
    jpeg_destroy_compress(&info);
    return tables;
}

void JpegTarget::attach(QIODevice &to)
{
    device = &to;
    flushed = 0;
    manager.init_destination = [](j_compress_ptr info) {
        reinterpret_cast<JpegTarget *>(info->dest)->startBuffer();
    };
    manager.empty_output_buffer = [](j_compress_ptr info) -> boolean {
        auto *target = reinterpret_cast<JpegTarget *>(info->dest);
        if (!target->write(target->buffer.size()))
            info->err->error_exit(reinterpret_cast<j_common_ptr>(info));
        target->startBuffer();
        return TRUE;
    };
    manager.term_destination = [](j_compress_ptr info) {
        auto *target = reinterpret_cast<JpegTarget *>(info->dest);
        if (!target->write(target->buffer.size() - target->manager.free_in_buffer))
            info->err->error_exit(reinterpret_cast<j_common_ptr>(info));
    };
}

void JpegTarget::startBuffer()
{
    manager.next_output_byte = buffer.data();
    manager.free_in_buffer = buffer.size();
}

bool JpegTarget::write(size_t count)
{
    const auto size = qint64(count);
    flushed += size;
    return device->write(reinterpret_cast<const char *>(buffer.data()), size) == size;
}

JpegEncoder::JpegEncoder(QIODevice &device, QSize size, const JpegEncoding &encoding)
    : m_size(size)
    , m_encoding(encoding)
{
    m_info = {};
    m_target.attach(device);
}

JpegEncoder::~JpegEncoder()
{
    jpeg_destroy_compress(&m_info);
}

void JpegEncoder::configure(int inputComponents, J_COLOR_SPACE inputColors)
{
    jpeg_create_compress(&m_info);
    m_info.dest = &m_target.manager;
    m_info.image_width = JDIMENSION(m_size.width());
    m_info.image_height = JDIMENSION(m_size.height());
    m_info.input_components = inputComponents;
    m_info.in_color_space = inputColors;
    jpeg_set_defaults(&m_info);
    const int components = int(m_encoding.sampling.size());
    jpeg_set_colorspace(&m_info, components == 1 ? JCS_GRAYSCALE : JCS_YCbCr);
    jpeg_set_quality(&m_info, m_encoding.quality, TRUE);
    for (int i = 0; i < components; ++i) {
        jpeg_component_info &component = m_info.comp_info[i];
        component.h_samp_factor = m_encoding.sampling[size_t(i)].horizontal;
        component.v_samp_factor = m_encoding.sampling[size_t(i)].vertical;
        if (m_encoding.tables.empty())
            continue;
        const auto first = m_encoding.tables.begin();
        component.quant_tbl_no = int(std::find(first, first + i, m_encoding.tables[size_t(i)]) - first);
        JQUANT_TBL *&table = m_info.quant_tbl_ptrs[i];
        if (!table)
            table = jpeg_alloc_quant_table(reinterpret_cast<j_common_ptr>(&m_info));
        std::copy(m_encoding.tables[size_t(i)].begin(), m_encoding.tables[size_t(i)].end(), table->quantval);
        table->sent_table = FALSE;
    }
    m_info.write_JFIF_header = m_encoding.hasJfif;
    if (m_encoding.dpi[0] > 0 && m_encoding.dpi[1] > 0) {
        m_info.density_unit = 1;
        m_info.X_density = UINT16(m_encoding.dpi[0]);
        m_info.Y_density = UINT16(m_encoding.dpi[1]);
    }
    if (m_encoding.isProgressive)
        jpeg_simple_progression(&m_info);
}

bool JpegEncoder::start()
{
    m_info.err = m_errors.attach();
    if (setjmp(m_errors.jump))
        return false;
    configure(4, kRgb32);
    jpeg_start_compress(&m_info, TRUE);
    return true;
}

bool JpegEncoder::start(JpegBlockRows &rows)
{
    m_info.err = m_errors.attach();
    if (setjmp(m_errors.jump))
        return false;
    const bool isGray = m_encoding.sampling.size() == 1;
    configure(isGray ? 1 : 3, isGray ? JCS_GRAYSCALE : JCS_YCbCr);
    m_info.client_data = &rows;
    m_info.mem->access_virt_barray = accessRows;
    for (size_t i = 0; i < m_arrays.size(); ++i)
        m_arrays[i] = reinterpret_cast<jvirt_barray_ptr>(&m_components[i]);
    jpeg_write_coefficients(&m_info, m_arrays.data());
    return true;
}

bool JpegEncoder::writeSegment(int marker, const char *payload, qsizetype size)
{
    if (setjmp(m_errors.jump))
        return false;
    jpeg_write_marker(&m_info, marker, reinterpret_cast<const JOCTET *>(payload), unsigned(size));
    return true;
}

/// @param rows  only read, although libjpeg's type is not const
bool JpegEncoder::writeRows(JSAMPARRAY rows, int count)
{
    if (setjmp(m_errors.jump))
        return false;
    return jpeg_write_scanlines(&m_info, rows, JDIMENSION(count)) == JDIMENSION(count);
}

bool JpegEncoder::writeImage(const QImage &image, int count)
{
    for (int row = 0; row < count;) {
        const int rows = qMin(count - row, kRowsAtATime);
        for (int i = 0; i < rows; ++i)
            m_rows[size_t(i)] = const_cast<JSAMPROW>(image.constScanLine(row + i));
        if (!writeRows(m_rows.data(), rows))
            return false;
        row += rows;
    }
    return true;
}

bool JpegEncoder::finish()
{
    if (setjmp(m_errors.jump))
        return false;
    jpeg_finish_compress(&m_info);
    return true;
}

} // namespace plexa

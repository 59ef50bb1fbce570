// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/jpeg/jpegcoefficients.h"

#include <jerror.h>

#include <algorithm>

namespace plexa
{

namespace
{

int roundedUp(int value, int factor)
{
    return (value + factor - 1) / factor * factor;
}

} // namespace

CoefficientPlane::CoefficientPlane(int across, int rowsKept)
    : m_across(across)
    , m_coefficients(size_t(across) * size_t(rowsKept) * DCTSIZE2)
{
    for (int row = 0; row < rowsKept; ++row)
        m_rows.push_back(
            reinterpret_cast<JBLOCKROW>(m_coefficients.data() + size_t(row) * size_t(across) * DCTSIZE2));
}

void CoefficientPlane::begin(int first, int count)
{
    for (int row = 0; row < count; ++row)
        std::fill_n(*rows(first + row)[0], size_t(m_across) * DCTSIZE2, JCOEF(0));
}

JpegCoefficients::JpegCoefficients(QIODevice &device, const ReadLimits &limits)
    : m_input(device, limits)
    , m_info(m_input.info())
{
}

bool JpegCoefficients::readHeader()
{
    if (!m_input.readHeader())
        return false;
    if (m_info.jpeg_color_space == JCS_YCbCr || m_info.jpeg_color_space == JCS_GRAYSCALE) {
        QByteArrayList factors;
        for (int i = 0; i < m_info.num_components; ++i)
            factors.append(QByteArray::number(m_info.comp_info[i].h_samp_factor) +
                           QByteArray::number(m_info.comp_info[i].v_samp_factor));
        m_sampling = jpegSamplingFromText(factors.join(','));
    }
    m_mcuSize = QSize(m_info.max_h_samp_factor, m_info.max_v_samp_factor) * DCTSIZE;
    return true;
}

QSize JpegCoefficients::size() const
{
    return {int(m_info.image_width), int(m_info.image_height)};
}

QSize JpegCoefficients::mcuCount() const
{
    return {roundedUp(size().width(), m_mcuSize.width()) / m_mcuSize.width(),
            roundedUp(size().height(), m_mcuSize.height()) / m_mcuSize.height()};
}

bool JpegCoefficients::hasSeveralScans()
{
    return jpeg_has_multiple_scans(&m_info);
}

jvirt_barray_ptr JpegCoefficients::requestRows(j_common_ptr info, int, boolean, JDIMENSION across, JDIMENSION,
                                               JDIMENSION)
{
    auto *self = static_cast<JpegCoefficients *>(info->client_data);
    if (self->m_requested == self->m_planes.size() ||
        self->m_planes[self->m_requested].across() != int(across)) {
        info->err->msg_code = JERR_BAD_VIRTUAL_ACCESS;
        info->err->error_exit(info);
    }
    return reinterpret_cast<jvirt_barray_ptr>(&self->m_planes[self->m_requested++]);
}

JBLOCKARRAY JpegCoefficients::accessRows(j_common_ptr info, jvirt_barray_ptr array, JDIMENSION first,
                                         JDIMENSION count, boolean isWritten)
{
    auto *plane = reinterpret_cast<CoefficientPlane *>(array);
    if (isWritten && static_cast<JpegCoefficients *>(info->client_data)->m_isRing)
        plane->begin(int(first), int(count));
    return plane->rows(int(first));
}

bool JpegCoefficients::start(int rowsKept)
{
    m_isRing = !hasSeveralScans();
    const int kept = m_isRing ? std::min(rowsKept, mcuCount().height()) : mcuCount().height();
    for (int i = 0; i < m_info.num_components; ++i) {
        const jpeg_component_info &component = m_info.comp_info[i];
        m_planes.emplace_back(roundedUp(int(component.width_in_blocks), component.h_samp_factor),
                              kept * component.v_samp_factor);
    }
    m_input.beginPicture();
    if (!callStart())
        return false;
    for (bool isAtEnd = m_isRing; !isAtEnd;) {
        if (!consume(isAtEnd) || m_input.hasTooManyScans())
            return false;
    }
    return m_input.hasAllScans();
}

bool JpegCoefficients::callStart()
{
    if (setjmp(m_input.errors().jump))
        return false;
    m_info.client_data = this;
    m_info.mem->request_virt_barray = requestRows;
    m_info.mem->access_virt_barray = accessRows;
    // The mode in which the library reads at the caller's pace.
    m_info.buffered_image = TRUE;
    m_info.do_block_smoothing = FALSE;
    return jpeg_start_decompress(&m_info) && m_input.isIntact();
}

bool JpegCoefficients::consume(bool &isAtEnd)
{
    if (setjmp(m_input.errors().jump))
        return false;
    const int state = jpeg_consume_input(&m_info);
    isAtEnd = state == JPEG_REACHED_EOI;
    return state != JPEG_SUSPENDED && m_input.isIntact();
}

bool JpegCoefficients::readTo(int row)
{
    for (bool isAtEnd = false; m_isRing && int(m_info.input_iMCU_row) <= row;) {
        if (!consume(isAtEnd) || isAtEnd)
            return false;
    }
    return true;
}

bool JpegCoefficients::hasEnd()
{
    return m_input.hasEnd([](auto &info) { return jpeg_consume_input(&info) == JPEG_REACHED_EOI; });
}

JBLOCKARRAY JpegCoefficients::rowsOf(int component, int row)
{
    return m_planes[size_t(component)].rows(row * m_info.comp_info[component].v_samp_factor);
}

void JpegCoefficients::release(size_t component)
{
    // In a file of one scan, a second one would still be read.
    if (!m_isRing)
        m_planes[component] = CoefficientPlane(0, 0);
}

QuantizationTable JpegCoefficients::tableOf(int component)
{
    QuantizationTable table = {};
    if (const JQUANT_TBL *steps = m_info.comp_info[component].quant_table)
        std::copy_n(steps->quantval, DCTSIZE2, table.begin());
    return table;
}

} // namespace plexa

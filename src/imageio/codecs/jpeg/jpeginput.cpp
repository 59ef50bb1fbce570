// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/jpeg/jpeginput.h"

namespace plexa
{

namespace
{

/// Bound of the work for the scans of a progressive picture. Real files have 10 to 20 scans; a few thousand
/// short ones would keep a machine busy for hours.
constexpr qint64 kMaxScannedPixels = 20'000'000'000;
constexpr int kScansAlwaysAllowed = 20;

/// A complete file may lack its end marker, but has hardly a byte in its place. A file whose end was never
/// stored has zeros there, which decode to gray areas without a complaint.
constexpr long kMaxStrayBytes = 16;

} // namespace

void JpegSource::attach(QIODevice &from)
{
    device = &from;
    reachedEnd = readFailed = false;
    manager.next_input_byte = nullptr;
    manager.bytes_in_buffer = 0;
    manager.init_source = [](j_decompress_ptr) {};
    manager.term_source = [](j_decompress_ptr) {};
    manager.resync_to_restart = jpeg_resync_to_restart;
    manager.fill_input_buffer = [](j_decompress_ptr info) -> boolean {
        reinterpret_cast<JpegSource *>(info->src)->fill();
        return TRUE;
    };
    manager.skip_input_data = [](j_decompress_ptr info, long count) {
        reinterpret_cast<JpegSource *>(info->src)->skip(count);
    };
}

void JpegSource::fill()
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

void JpegSource::skip(long count)
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

JpegInput::JpegInput(QIODevice &device, const ReadLimits &limits)
    : m_device(device)
    , m_limits(limits)
{
    m_info = {};
    m_source.attach(device);
}

JpegInput::~JpegInput()
{
    jpeg_destroy_decompress(&m_info);
}

bool JpegInput::callReadHeader()
{
    m_info.err = m_errors.attach();
    if (setjmp(m_errors.jump))
        return false;
    jpeg_create_decompress(&m_info);
    m_info.src = &m_source.manager;
    return jpeg_read_header(&m_info, TRUE) == JPEG_HEADER_OK;
}

Result<void> JpegInput::readHeader()
{
    if (!callReadHeader())
        return failure();
    const QSize size(int(m_info.image_width), int(m_info.image_height));
    if (const auto checked = PictureFailures::checkSize(size, m_limits); !checked)
        return checked;
    return checkCoefficients(size);
}

/// libjpeg holds the coefficients of a picture of several scans, two bytes each.
Result<void> JpegInput::checkCoefficients(QSize size) const
{
    if (!jpeg_has_multiple_scans(const_cast<jpeg_decompress_struct *>(&m_info)))
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

bool JpegInput::hasTooManyScans() const
{
    const qint64 pixels = qint64(m_info.image_width) * m_info.image_height;
    const int scans = m_info.input_scan_number;
    return scans > kScansAlwaysAllowed && scans > kMaxScannedPixels / pixels;
}

bool JpegInput::isIntact() const
{
    // An arithmetic decoder reads missing data as zeros and reports nothing.
    return !m_errors.isDamaged && !(m_info.arith_code && m_source.reachedEnd);
}

bool JpegInput::hasAllScans()
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

bool JpegInput::hasEnd(bool (*isFinished)(jpeg_decompress_struct &info))
{
    if (setjmp(m_errors.jump))
        return true; // damage after the picture
    while (!isFinished(m_info)) {
    }
    return !m_source.reachedEnd || m_errors.strayBytes <= kMaxStrayBytes;
}

QString JpegInput::notice() const
{
    if (m_lacksLastStep)
        return PictureFailures::lacksLastScan();
    return m_errors.strayBytes > m_strayBytesBefore ? PictureFailures::mayBeDamaged() : QString();
}

tl::unexpected<Error> JpegInput::failure() const
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

} // namespace plexa

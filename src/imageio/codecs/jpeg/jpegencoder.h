// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/codecs/jpeg/jpegerrors.h"
#include "imageio/codecs/jpeg/jpegstructure.h"

#include <QIODevice>
#include <QImage>
#include <QSize>

#include <array>
#include <vector>

namespace plexa
{

/// The sampling factors of each component: luma alone, or luma and the two chroma planes.
using JpegSampling = std::vector<JpegStructure::Component>;

/// Reads "22,11,11". @return empty unless libjpeg can write the factors
JpegSampling jpegSamplingFromText(const QByteArray &text);

/// The steps of a component's coefficients, row by row as they are in a block.
using QuantizationTable = std::array<UINT16, DCTSIZE2>;

/// The tables of luma and chroma for a quality of 0 to 100.
std::array<QuantizationTable, 2> tablesOfQuality(int quality);

/// How the picture of a JPEG is encoded.
struct JpegEncoding {
    int quality = 80;                      ///< 0..100; counts only without tables
    std::vector<QuantizationTable> tables; ///< one for each component, or none
    JpegSampling sampling = {{2, 2}, {1, 1}, {1, 1}};
    bool isProgressive = false;
    bool hasJfif = true;
    int dpi[2] = {0, 0}; ///< 0: not written
};

/// Supplies the quantized coefficients of a picture while they are written.
class JpegBlockRows
{
public:
    virtual ~JpegBlockRows() = default;

    /// The rows of blocks of one component in a row of MCUs, each as wide as the component. Called from the
    /// top down; for a progressive picture several times.
    /// @param row  of MCUs, from 0
    /// @return as many pointers as the component's vertical factor; null: they cannot be had. Valid until the
    ///         next call for the component
    virtual JBLOCKARRAY rowsOf(int component, int row) noexcept = 0;
};

/// libjpeg's output: large writes to a device.
struct JpegTarget {
    jpeg_destination_mgr manager;
    QIODevice *device;
    qint64 flushed;
    std::array<JOCTET, 256 * 1024> buffer;

    void attach(QIODevice &to);

    /// Bytes that the file has so far.
    qint64 position() const { return flushed + qint64(buffer.size() - manager.free_in_buffer); }

private:
    void startBuffer();
    bool write(size_t count);
};

/// Runs libjpeg's compressor. The functions that call it own no object whose destructor a jump would skip;
/// after one has returned false the encoder must not be used.
class JpegEncoder
{
public:
    /// @param device  must outlive this object
    JpegEncoder(QIODevice &device, QSize size, const JpegEncoding &encoding);
    ~JpegEncoder();
    JpegEncoder(const JpegEncoder &) = delete;
    JpegEncoder &operator=(const JpegEncoder &) = delete;

    /// Begins a file that is made of pixels.
    bool start();

    /// Begins a file that is made of coefficients; finish() asks for them.
    bool start(JpegBlockRows &rows);

    bool writeSegment(int marker, const char *payload, qsizetype size);

    /// @param image  Format_RGB32; its first `count` rows are written
    bool writeImage(const QImage &image, int count);

    bool finish();

    qint64 position() const { return m_target.position(); }
    bool isOutOfMemory() const { return m_errors.isOutOfMemory; }

private:
    void configure(int inputComponents, J_COLOR_SPACE inputColors);
    bool writeRows(JSAMPARRAY rows, int count);

    static constexpr int kRowsAtATime = 16;

    const QSize m_size;
    const JpegEncoding m_encoding;
    JpegErrors m_errors;
    JpegTarget m_target;
    jpeg_compress_struct m_info;
    std::array<JSAMPROW, kRowsAtATime> m_rows = {};
    std::array<int, 3> m_components = {0, 1, 2};
    std::array<jvirt_barray_ptr, 3> m_arrays = {};
};

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/base/picturefailures.h"
#include "imageio/codecs/jpeg/jpegerrors.h"

#include <QIODevice>

#include <array>

namespace plexa
{

/// libjpeg's input: large reads from a device. At the end of the file it supplies an end marker; the decoder
/// then notices whether data are missing.
struct JpegSource {
    jpeg_source_mgr manager;
    QIODevice *device;
    bool reachedEnd;
    bool readFailed;
    std::array<JOCTET, 256 * 1024> buffer;

    void attach(QIODevice &from);

private:
    void fill();
    void skip(long count);
};

/// A JPEG file that libjpeg decodes, as far as all decoders here agree: the header and the bounds of what it
/// may ask for, and what counts as damaged or truncated. One thread.
class JpegInput
{
public:
    /// @param device  open for reading, at the start of the file; must outlive this object
    JpegInput(QIODevice &device, const ReadLimits &limits);
    ~JpegInput();
    JpegInput(const JpegInput &) = delete;
    JpegInput &operator=(const JpegInput &) = delete;

    /// Reads the header. Fails if the picture or its coefficients are too large.
    [[nodiscard]] Result<void> readHeader();

    // Further calls of the library go through this object and must set the jump themselves:
    //     if (setjmp(input.errors().jump)) return false;
    jpeg_decompress_struct &info() { return m_info; }
    JpegErrors &errors() { return m_errors; }

    /// To be called when the first scan begins: stray bytes before it do not belong to the picture.
    void beginPicture() { m_strayBytesBefore = m_errors.strayBytes; }

    /// Does the number of scans so far exceed what real files have?
    bool hasTooManyScans() const;

    /// Was the picture read without damage so far?
    bool isIntact() const;

    /// Checks a file that was read to its end before the first row: is every scan present?
    bool hasAllScans();

    /// Checks the file behind the last row: do the data end, or do bytes without meaning go on to its end?
    /// @param isFinished  calls the library until the end marker
    bool hasEnd(bool (*isFinished)(jpeg_decompress_struct &info));

    /// As RowReader::notice().
    QString notice() const;

    /// The reason after a check or a call has failed.
    tl::unexpected<Error> failure() const;

private:
    bool callReadHeader();
    Result<void> checkCoefficients(QSize size) const;

    QIODevice &m_device;
    const ReadLimits m_limits;
    JpegErrors m_errors;
    JpegSource m_source;
    jpeg_decompress_struct m_info;
    long m_strayBytesBefore = 0;  ///< the first scan; they are not of the picture
    bool m_lacksLastStep = false; ///< of a progressive picture, in an otherwise complete file
};

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"

#include <QImage>
#include <QSize>

#include <memory>
#include <optional>

namespace plexa
{

/// The pixels of one picture as rows from the top down, between a decoder and an encoder: 8-bit sRGB,
/// Format_RGB32 without alpha, Format_ARGB32_Premultiplied with alpha.
struct RowFormat {
    QSize size; ///< pixels as stored in the file, before any orientation tag is applied
    bool hasAlpha = false;

    QImage::Format imageFormat() const
    {
        return hasAlpha ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
    }

    bool operator==(const RowFormat &) const = default;
};

/// Reads the rows of a picture. Decoding errors are reported by readRows(); after the first one, all further
/// calls fail. One thread at a time.
class RowReader
{
public:
    virtual ~RowReader() = default;
    RowReader(const RowReader &) = delete;
    RowReader &operator=(const RowReader &) = delete;

    const RowFormat &format() const { return m_format; }

    /// A loss or damage in the file that leaves the picture usable, as a text that follows the file's name;
    /// empty: none. Complete after the last row.
    virtual QString notice() const { return {}; }

    /// Reads the next `count` rows of the picture into the first rows of `strip`.
    /// @param strip  format().imageFormat(), as wide as the picture, at least `count` rows; not shared
    /// @param count  at least 1 and at most the number of rows left
    /// @return the failure when the picture data are damaged or truncated
    [[nodiscard]] Result<void> readRows(QImage &strip, int count);

protected:
    explicit RowReader(const RowFormat &format = {})
        : m_format(format)
    {
    }

    /// Decodes the next `count` rows.
    /// @param bits    the first pixel
    /// @param stride  bytes from one row to the next
    virtual Result<void> decodeRows(uchar *bits, qsizetype stride, int count) = 0;

    /// The number of rows decoded by earlier calls.
    int rowsRead() const { return m_rowsRead; }

    RowFormat m_format; ///< final once the reader is returned to its user

private:
    int m_rowsRead = 0;
    std::optional<Error> m_failure;
};

/// A reader that decodes one row at a time.
class SingleRowReader : public RowReader
{
protected:
    using RowReader::RowReader;

    /// Decodes row `index`; called for each row once, from the top down.
    /// @param row  as many pixels as the picture is wide
    virtual Result<void> decodeRow(int index, QRgb *row) = 0;

private:
    Result<void> decodeRows(uchar *bits, qsizetype stride, int count) final;
};

/// Reads the rows of a picture in memory.
/// @param image  any format; rows without alpha ignore the alpha of the image
std::unique_ptr<RowReader> rowsOfImage(QImage image, bool hasAlpha);

/// Encodes the rows of a picture and writes the file around them. One thread at a time.
class RowWriter
{
public:
    virtual ~RowWriter() = default;
    RowWriter(const RowWriter &) = delete;
    RowWriter &operator=(const RowWriter &) = delete;

    /// Writes the first `count` rows of `strip` as the next rows of the picture.
    /// @param strip  format and width as announced when the writer was opened
    [[nodiscard]] Result<void> writeRows(const QImage &strip, int count);

    /// Writes what follows the last row. To be called once, after all rows; without it the file is
    /// incomplete.
    [[nodiscard]] virtual Result<void> finish() = 0;

protected:
    explicit RowWriter(const RowFormat &format)
        : m_format(format)
    {
    }

    /// Encodes the first `count` rows of `strip`; rowsWritten() rows precede them.
    virtual Result<void> encodeRows(const QImage &strip, int count) = 0;

    /// The number of rows encoded by earlier calls.
    int rowsWritten() const { return m_rowsWritten; }

    const RowFormat m_format;

private:
    int m_rowsWritten = 0;
};

} // namespace plexa

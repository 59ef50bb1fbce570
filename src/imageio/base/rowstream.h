// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"

#include <QImage>
#include <QSize>

namespace plexa
{

/// The pixels of one picture, from the top row down, as an encoder or a decoder hands them over: 8-bit
/// sRGB, Format_RGB32 when `hasAlpha` is false and Format_ARGB32_Premultiplied when it is true.
struct RowFormat {
    QSize size; ///< pixels as stored in the file, before any orientation tag is followed
    bool hasAlpha = false;

    QImage::Format imageFormat() const
    {
        return hasAlpha ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
    }

    bool operator==(const RowFormat &) const = default;
};

/// Gives a picture's rows. Reading errors come out of readRows(); a reader that has failed stays failed.
/// One thread at a time.
class RowReader
{
public:
    virtual ~RowReader() = default;
    RowReader() = default;
    RowReader(const RowReader &) = delete;
    RowReader &operator=(const RowReader &) = delete;

    virtual RowFormat format() const = 0;

    /// Writes the next `count` rows of the picture into the rows of `strip` from its row 0 on.
    /// @param strip  format().imageFormat(), as wide as the picture, at least `count` rows; not shared
    /// @param count  at least 1 and at most the rows that are left
    /// @return the failure when the picture's data are damaged or end early
    [[nodiscard]] virtual Result<void> readRows(QImage &strip, int count) = 0;
};

/// Takes a picture's rows and writes the file around them. One thread at a time.
class RowWriter
{
public:
    virtual ~RowWriter() = default;
    RowWriter() = default;
    RowWriter(const RowWriter &) = delete;
    RowWriter &operator=(const RowWriter &) = delete;

    /// Takes the next `count` rows from the rows of `strip` from its row 0 on; format and width as
    /// announced when the writer was made.
    [[nodiscard]] virtual Result<void> writeRows(const QImage &strip, int count) = 0;

    /// Writes what follows the last row. To be called once, after all rows; without it the file is not
    /// whole.
    [[nodiscard]] virtual Result<void> finish() = 0;
};

} // namespace plexa

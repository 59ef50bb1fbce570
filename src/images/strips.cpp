// SPDX-License-Identifier: GPL-3.0-or-later

#include "images/strips.h"

#include <algorithm>

namespace plexa
{

namespace
{

constexpr qsizetype kStripBytes = 512 * 1024;
constexpr int kCodecBlockRows = 16; // JPEG works in blocks of up to 16 rows

int rowsPerStrip(QSize picture)
{
    const qsizetype bytesPerRow = qsizetype(picture.width()) * 4;
    const auto blocks =
        static_cast<int>(std::max<qsizetype>(1, kStripBytes / (bytesPerRow * kCodecBlockRows)));
    return std::min(picture.height(), blocks * kCodecBlockRows);
}

} // namespace

Result<void> forEachStrip(RowReader &reader, const StripVisitor &visit, const CancelCheck &isCanceled)
{
    const RowFormat format = reader.format();
    const int rows = rowsPerStrip(format.size);
    QImage strip(format.size.width(), isCanceled ? std::min(rows, kCodecBlockRows) : rows,
                 format.imageFormat());
    if (strip.isNull())
        return fail(outOfMemoryText());
    for (int row = 0; row < format.size.height(); row += strip.height()) {
        if (canceled(isCanceled))
            return fail(canceledText());
        const int count = std::min(strip.height(), format.size.height() - row);
        if (Result<void> read = reader.readRows(strip, count); !read)
            return read;
        if (Result<void> visited = visit(strip, row, count); !visited)
            return visited;
    }
    return {};
}

Result<void> readStrips(RowReader &reader, QImage &picture, const CancelCheck &isCanceled)
{
    const int rows = isCanceled ? kCodecBlockRows : picture.height();
    for (int row = 0; row < picture.height(); row += rows) {
        if (canceled(isCanceled))
            return fail(canceledText());
        const int count = std::min(rows, picture.height() - row);
        QImage strip(picture.scanLine(row), picture.width(), count, picture.bytesPerLine(), picture.format());
        if (Result<void> read = reader.readRows(strip, count); !read)
            return read;
    }
    return {};
}

Result<void> writeStrips(RowWriter &writer, const QImage &picture, const CancelCheck &isCanceled)
{
    const int rows = rowsPerStrip(picture.size());
    for (int row = 0; row < picture.height(); row += rows) {
        if (canceled(isCanceled))
            return fail(canceledText());
        const int count = std::min(rows, picture.height() - row);
        const QImage strip(picture.constScanLine(row), picture.width(), count, picture.bytesPerLine(),
                           picture.format());
        if (Result<void> written = writer.writeRows(strip, count); !written)
            return written;
    }
    return {};
}

QString outOfMemoryText()
{
    return QStringLiteral("there is not enough memory for the picture");
}

} // namespace plexa

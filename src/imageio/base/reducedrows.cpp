// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/base/reducedrows.h"

#include "imageio/base/picturefailures.h"

#include <algorithm>
#include <vector>

namespace plexa
{

QSize reducedSize(QSize size, int factor)
{
    return {(size.width() + factor - 1) / factor, (size.height() + factor - 1) / factor};
}

int reductionFor(QSize size, int minimumSide)
{
    const int longer = std::max(size.width(), size.height());
    int reduction = 8;
    while (reduction > 1 && (longer + reduction - 1) / reduction < minimumSide)
        reduction /= 2;
    return reduction;
}

namespace
{

/// Each pixel is the mean of a square of `factor` by `factor` pixels, of fewer at the right and lower edges.
class ReducedRowReader final : public SingleRowReader
{
public:
    ReducedRowReader(std::unique_ptr<RowReader> whole, int factor)
        : SingleRowReader({reducedSize(whole->format().size, factor), whole->format().hasAlpha})
        , m_whole(std::move(whole))
        , m_factor(factor)
        , m_rows(m_whole->format().size.width(), factor, m_format.imageFormat())
        , m_sums(size_t(m_format.size.width()))
        , m_rowsLeft(m_whole->format().size.height())
    {
    }

private:
    Result<void> decodeRow(int, QRgb *row) override
    {
        if (m_rows.isNull())
            return fail(PictureFailures::outOfMemory());
        const int rows = qMin(m_factor, m_rowsLeft);
        if (const auto read = m_whole->readRows(m_rows, rows); !read)
            return read;
        m_rowsLeft -= rows;
        std::fill(m_sums.begin(), m_sums.end(), Sum());
        for (int y = 0; y < rows; ++y) {
            const auto *in = reinterpret_cast<const QRgb *>(m_rows.constScanLine(y));
            int left = m_rows.width();
            for (Sum &sum : m_sums) {
                const int columns = qMin(m_factor, left);
                for (int x = 0; x < columns; ++x, ++in) {
                    sum.alpha += qAlpha(*in);
                    sum.red += qRed(*in);
                    sum.green += qGreen(*in);
                    sum.blue += qBlue(*in);
                }
                sum.count += columns;
                left -= columns;
            }
        }
        for (const Sum &sum : m_sums) {
            const auto mean = [&sum](int total) { return (total + sum.count / 2) / sum.count; };
            *row++ = qRgba(mean(sum.red), mean(sum.green), mean(sum.blue), mean(sum.alpha));
        }
        return {};
    }

    struct Sum {
        int alpha = 0, red = 0, green = 0, blue = 0, count = 0;
    };

    const std::unique_ptr<RowReader> m_whole;
    const int m_factor;
    QImage m_rows; ///< of the larger picture, for one reduced row
    std::vector<Sum> m_sums;
    int m_rowsLeft; ///< of the larger picture
};

} // namespace

std::unique_ptr<RowReader> reducedTo(QSize size, std::unique_ptr<RowReader> whole)
{
    for (const int factor : {2, 4, 8}) {
        if (size != whole->format().size && size == reducedSize(whole->format().size, factor))
            return std::make_unique<ReducedRowReader>(std::move(whole), factor);
    }
    return whole;
}

} // namespace plexa

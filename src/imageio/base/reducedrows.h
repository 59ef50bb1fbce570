// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/base/rowstream.h"

#include <memory>
#include <vector>

namespace plexa
{

/// A size divided by `factor`, sides rounded up.
QSize reducedSize(QSize size, int factor);

/// The largest of the factors 8, 4, 2 and 1 by which a picture can be reduced so that its longer side still
/// has `minimumSide` pixels; 1 where it has fewer.
int reductionFor(QSize size, int minimumSide);

/// Makes the rows of a smaller picture out of those of a larger one: each pixel the mean of a square of
/// `factor` by `factor` pixels, of less at the right and lower edges.
class ReducedRowReader final : public SingleRowReader
{
public:
    ReducedRowReader(std::unique_ptr<RowReader> whole, int factor);

private:
    Result<void> decodeRow(int index, QRgb *row) override;

    struct Sum {
        int alpha = 0, red = 0, green = 0, blue = 0, count = 0;
    };

    const std::unique_ptr<RowReader> m_whole;
    const int m_factor;
    QImage m_rows; ///< of the larger picture, as many as make one
    std::vector<Sum> m_sums;
    int m_rowsLeft; ///< of the larger picture
};

/// The reader itself where `factor` is 1.
std::unique_ptr<RowReader> withReducedRows(std::unique_ptr<RowReader> whole, int factor);

} // namespace plexa

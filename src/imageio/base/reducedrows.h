// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/base/rowstream.h"

#include <memory>

namespace plexa
{

/// A size divided by `factor`, sides rounded up.
QSize reducedSize(QSize size, int factor);

/// The largest of the factors 8, 4, 2 and 1 by which a picture can be reduced so that its longer side still
/// has `minimumSide` pixels; 1 where it has fewer.
int reductionFor(QSize size, int minimumSide);

/// Reduces the rows of a reader to `size`, as far as the factors 2, 4 and 8 lead there; else returns the
/// reader itself.
std::unique_ptr<RowReader> reducedTo(QSize size, std::unique_ptr<RowReader> whole);

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/base/rowstream.h"
#include "platform/cancelcheck.h"

#include <QImage>

#include <functional>

namespace plexa
{

/// Receives the picture's rows from `firstRow` on, `count` of them, in the first rows of the strip. A failure
/// ends the walk and becomes its result. The strip may be drawn on; it is not shared.
using StripVisitor = std::function<Result<void>(QImage &strip, int firstRow, int count)>;

/// Reads a picture from the top down, a few rows at a time: enough to keep codecs busy, few enough to stay in
/// the processor's cache.
/// @param isCanceled  asked before each strip; where given, a strip has few rows even if they are short
[[nodiscard]] Result<void> forEachStrip(RowReader &reader, const StripVisitor &visit,
                                        const CancelCheck &isCanceled = {});

/// Reads a whole picture into `picture`, which has the reader's size and format and is not shared.
/// @param isCanceled  as forEachStrip()
[[nodiscard]] Result<void> readStrips(RowReader &reader, QImage &picture, const CancelCheck &isCanceled);

/// Passes a picture in memory to a writer strip by strip, without copying it.
/// @param isCanceled  asked before each strip
[[nodiscard]] Result<void> writeStrips(RowWriter &writer, const QImage &picture,
                                       const CancelCheck &isCanceled);

/// The reason reported when there is no memory for a picture.
QString outOfMemoryText();

} // namespace plexa

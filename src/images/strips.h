// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/base/rowstream.h"
#include "platform/cancelcheck.h"

#include <QImage>

#include <functional>

namespace plexa
{

/// What a strip is used for: it holds the picture's rows from `firstRow` on, `count` of them. A failure ends
/// the walk and becomes its result. The strip may be drawn on; it is not shared.
using StripVisitor = std::function<Result<void>(QImage &strip, int firstRow, int count)>;

/// Reads a picture from the top down, a few rows at a time: enough to keep codecs busy, few enough to stay in
/// the processor's cache.
[[nodiscard]] Result<void> forEachStrip(RowReader &reader, const StripVisitor &visit);

/// Hands a picture in memory to a writer strip by strip, without copying it.
/// @param isCancelled  asked before each strip
[[nodiscard]] Result<void> writeStrips(RowWriter &writer, const QImage &picture,
                                       const CancelCheck &isCancelled);

/// A picture without contents; null when there is no memory for it.
QImage blankPicture(QSize size, QImage::Format format);

/// The reason given where a picture finds no room.
QString outOfMemoryText();

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/cancelcheck.h"
#include "platform/result.h"

#include <QByteArray>
#include <QImage>
#include <QSizeF>

namespace plexa
{

/// The processor time that a drawing may use, for checking and for each rendering.
inline constexpr int kMaxSvgSeconds = 2;

/// A drawing that may be rendered.
struct SvgDrawing {
    QByteArray svg; ///< in UTF-8
    QSizeF size;    ///< in user units; both sides > 0
};

// Both work on a thread of their own, which stops at the next element when the time is up or the caller
// cancels; the caller waits no longer than that. The time is that of the processor, so the answer does not
// depend on how busy the machine is. Any thread.

/// Checks a document as boundedXml() and faultOfSvg() do, and measures it.
[[nodiscard]] Result<SvgDrawing> checkedSvg(const QByteArray &svg);

/// @param svg  of a drawing that checkedSvg() returned
/// @return Format_ARGB32_Premultiplied
[[nodiscard]] Result<QImage> renderedSvg(const QByteArray &svg, QSize size, const CancelCheck &isCanceled);

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/widgets/plaintooltip.h"

namespace plexa
{

namespace
{

constexpr qsizetype kMaxLine = 100; // letters

} // namespace

QString plainToolTip(QString text)
{
    if (text.isEmpty())
        return text;
    for (qsizetype at = kMaxLine; at < text.size(); at += kMaxLine) {
        if (text.at(at).isLowSurrogate())
            --at;
        text.insert(at++, QLatin1Char('\n'));
    }
    return QStringLiteral("<p style='white-space:pre'>%1</p>").arg(text.toHtmlEscaped());
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QString>

namespace plexa
{

/// Looks through an SVG document before a renderer, which trusts it, gets it: is it whole XML, with an <svg>
/// at its root, without references to what is outside of it, and neither so deep nor, once all that is used
/// again is counted, so large that drawing it would not end? Any thread.
/// @return the reason why it is not to be drawn; empty when there is none
QString faultOfSvg(const QByteArray &svg);

} // namespace plexa

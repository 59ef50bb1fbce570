// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QString>

namespace plexa
{

/// Checks an SVG document before it is rendered: it must be complete XML with an <svg> root, without
/// references to other files, and neither nested too deeply nor, with every <use> counted, too large. Any
/// thread.
/// @return the reason why it must not be drawn; empty if there is none
QString faultOfSvg(const QByteArray &svg);

} // namespace plexa

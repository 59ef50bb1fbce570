// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

class QIODevice;

namespace plexa
{

/// Checks an SVG document before it is rendered: it must be complete XML with an <svg> root, without
/// references to other files, and neither nested too deeply nor, with every <use> counted, too large. Rules
/// of style sheets and stops of gradients are counted, too. Any thread.
/// @param svg  an open device with a document that passed boundedXml()
/// @return the reason why it must not be drawn; empty if there is none
QString faultOfSvg(QIODevice &svg);

} // namespace plexa

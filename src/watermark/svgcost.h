// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

class QSvgRenderer;

namespace plexa
{

/// About how long it takes to draw an SVG document 6000 pixels wide or tall, whichever is more, in seconds of
/// an ordinary machine. Nothing is drawn: what the renderer asks for is counted. Made for telling drawings
/// that take much too long from others, not for progress. Threads: as for drawing with the renderer.
double secondsToDrawSvg(QSvgRenderer &renderer);

} // namespace plexa

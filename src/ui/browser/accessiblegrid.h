// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace plexa
{

class BrowserSelection;
class ImageBrowserView;

/// What screen readers are told of a grid: a list, whose items are the images with their names, places and
/// states, and can be selected by them. Main thread.
namespace AccessibleGrid
{

/// From then on grids are lists. May be called again.
void install();

/// Selection and focus have changed.
void announceChange(ImageBrowserView &view, const BrowserSelection &before, const BrowserSelection &now);

} // namespace AccessibleGrid

} // namespace plexa

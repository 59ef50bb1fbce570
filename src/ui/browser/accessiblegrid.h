// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace plexa
{

class BrowserSelection;
class ImageBrowserView;

/// Presents a grid to screen readers as a list. Its items are the images with their names, places and states;
/// screen readers can select them. Main thread.
namespace AccessibleGrid
{

/// May be called again.
void install();

/// Reports a change of selection and focus to screen readers.
void announceChange(ImageBrowserView &view, const BrowserSelection &before, const BrowserSelection &now);

} // namespace AccessibleGrid

} // namespace plexa

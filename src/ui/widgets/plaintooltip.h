// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

namespace plexa
{

/// A text for a tool tip that shows it as it is: names of files and presets may look like markup. A long one
/// gets several lines.
QString plainToolTip(QString text);

} // namespace plexa

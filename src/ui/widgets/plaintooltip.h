// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

namespace plexa
{

/// A tool tip that shows a text literally: names of files and presets may look like markup. Breaks long
/// lines.
QString plainToolTip(QString text);

} // namespace plexa

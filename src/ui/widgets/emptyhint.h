// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

class QString;
class QWidget;

namespace plexa
{

/// Writes what could be here in the middle of an empty widget; called while that is painted.
void paintEmptyHint(QWidget *widget, const QString &text);

} // namespace plexa

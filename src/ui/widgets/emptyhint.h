// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

class QString;
class QWidget;

namespace plexa
{

/// Draws a hint in the middle of an empty widget, in its paint event.
void paintEmptyHint(QWidget *widget, const QString &text);

} // namespace plexa

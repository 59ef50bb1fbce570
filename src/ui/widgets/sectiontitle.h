// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

class QLabel;
class QString;
class QWidget;

namespace plexa
{

/// A small heading in a panel.
/// @param buddy  the widget below it, for screen readers; may be null
QLabel *sectionTitle(const QString &text, QWidget *buddy = nullptr);

} // namespace plexa

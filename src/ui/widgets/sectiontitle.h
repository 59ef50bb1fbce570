// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

class QLabel;
class QString;
class QWidget;

namespace plexa
{

/// A small heading above a part of a panel.
/// @param buddy  what it is the heading of, for screen readers; may be null
QLabel *sectionTitle(const QString &text, QWidget *buddy = nullptr);

} // namespace plexa

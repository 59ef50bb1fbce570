// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

namespace plexa
{

/// The text that a menu shows for a value of a field as presets contain it: "% of width" in the user's
/// language. Names of formats stay as they are.
QString shownChoice(const QString &choice);

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QJsonArray>
#include <QStringList>

#include <array>
#include <functional>

namespace plexa
{

/// Major, minor, patch.
using SystemVersion = std::array<int, 3>;

/// The version that a text begins with: "22.04" is 22, 4, 0. A part without digits is 0.
SystemVersion systemVersionOf(const QString &text);

/// The version of the system that the program runs on.
SystemVersion currentSystemVersion();

/// Whether the current version is at least the value of a feed: "10.13" or "10.13.6". A value of another form
/// is no condition.
bool isCurrentOSVersionSince(const QJsonValue &value, const SystemVersion &current);

/// Of the objects in a list, the text of the last one with a preferred "language"; else the text of the first
/// one without a language, if it comes before. Empty if there is none.
/// @param key  of the texts
/// @param isUsable  false for texts that are passed over
QString preferredText(const QJsonArray &objects, const QString &key, const QStringList &preferredLanguages,
                      const std::function<bool(const QString &)> &isUsable);

/// Whether a time that a setting holds is less than a day away from now. Not only before now: a date in the
/// future comes from a wrong clock.
/// @param date  ISO 8601, or anything else
bool isWithinADay(const QString &date);

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

#include <ctime>
#include <optional>

namespace plexa
{

/// When the file came into being, to the nanosecond: its time of birth, or of its last modification where
/// that is earlier (the birth of a file that was copied here) or the birth is not known. Follows links.
/// @return none where there is no such file
std::optional<timespec> creationTimeOf(const QString &path);

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"

#include <string>
#include <vector>

namespace plexa
{

/// The paths in a list, one a line or, if `isNulSeparated`, each with a null byte at its end; empty ones are
/// left out. The bytes of a path stay as they are.
/// @param file  "-" is the standard input
[[nodiscard]] Result<std::vector<std::string>> pathsInList(const std::string &file, bool isNulSeparated);

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"

#include <QString>

namespace plexa
{

/// Whether the folder exists, or could be created with the folders above it, as far as that can be checked
/// without trying. Any thread. @return the reason if it could not
[[nodiscard]] Result<void> checkFolderCanBeMade(const QString &path);

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"

namespace plexa
{

/// Is the folder there, or could it be made with the folders above it, as far as that can be known without
/// trying? @return the reason why not, which names the folder
[[nodiscard]] Result<void> checkFolderCanBeMade(const QString &path);

} // namespace plexa

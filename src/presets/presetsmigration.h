// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

namespace plexa
{

/// Adopts the preset files of the program's first major version from the folder "Quorvel Plexa 1". Each file
/// is copied to "NAME - older backup" in the support folder, and moved there if the folder has no file of its
/// name. After that the old folder is deleted with its other files. A file that is not regular or cannot be
/// copied stops the migration; like an interrupted one, it continues at the next start.
/// @param supportFolder  "BASE/maker/program"; the old folder is in BASE
void updateOldApplicationSupportDirectoryIfNeeded(const QString &supportFolder);

} // namespace plexa

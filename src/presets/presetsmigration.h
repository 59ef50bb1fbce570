// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

namespace plexa
{

/// Takes over the preset files of the program's first major version, whose folder was called "Quorvel Plexa
/// 1". Each file is copied to "NAME - older backup" in the support folder, and moved there itself where there
/// is none of its name; when all went well, the old folder is deleted with what remains in it. Interrupted,
/// or stopped by what is no regular file or cannot be copied, it goes on the next time.
/// @param supportFolder  "BASE/maker/program"; the old folder is looked for in BASE
void updateOldApplicationSupportDirectoryIfNeeded(const QString &supportFolder);

} // namespace plexa

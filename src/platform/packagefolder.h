// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

namespace plexa
{

/// Is a folder of this name one that people see as a single file: an application, the library of another
/// photo program? Told by the name alone; what is inside is that program's own affair.
bool isPackageFolder(const QString &path);

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

namespace plexa
{

/// "Quorvel".
QString companyName();

/// "Plexa".
QString applicationName();

/// "Quorvel Plexa".
QString applicationNameWithCompany();

/// "major.minor.patch".
QString applicationVersion();

/// The name by which the first major version marked its files, and called its folder.
QString firstVersionApplicationName();

/// The user's folder for the program's own files, created where it is missing. Failures are logged, and the
/// path is returned all the same: reading and writing there then fail with their own reasons.
QString applicationSupportSubdirectory();

/// The full name of the user who runs the program, else the login name, else an empty string.
QString fullUserName();

/// The full name in a passwd entry's comment field: the part before the first comma, in which "&" represents
/// the login name with a capital first letter.
QString fullNameInComment(const QString &comment, const QString &loginName);

} // namespace plexa

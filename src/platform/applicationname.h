// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

namespace plexa
{

/// What the program's package says of itself. Any of it may be empty.
struct BundleInfo {
    QString developerCompany;
    QString bundleName;
    QString shortVersionString; ///< "major.minor.patch"

    /// This program's, from its build.
    static BundleInfo own();
};

/// The maker's name: the bundle's when asked for and given, else the one the program was born with.
QString companyName(bool fromBundleInfo, const BundleInfo &bundle = BundleInfo::own());

/// The program's name, with the maker's in front and the major version behind as asked for: "Quorvel Plexa
/// 1".
/// @param fromBundleInfo  whether the bundle's names count where they are given; the version always comes
///                        from there, and is "1" where there is none
QString applicationNameWithCompany(bool withCompany, bool andMajorVersion, bool fromBundleInfo,
                                   const BundleInfo &bundle = BundleInfo::own());

/// The name by which the first major version marked its files, and called its folder.
QString firstVersionApplicationName();

/// The user's folder for the program's own files, created where it is missing. Failures are logged, and the
/// path is returned all the same: what is read or written there then fails for itself.
QString applicationSupportSubdirectory();

/// The full name of the user who runs the program, else the login name, else an empty string.
QString fullUserName();

/// The full name in a passwd entry's comment field: what stands before the first comma, with "&" standing for
/// the login name with a capital first letter.
QString fullNameInComment(const QString &comment, const QString &loginName);

} // namespace plexa

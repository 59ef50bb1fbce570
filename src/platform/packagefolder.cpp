// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/packagefolder.h"

#include "platform/filenames.h"

#include <algorithm>
#include <array>

namespace plexa
{

namespace
{

constexpr std::array kPackageSuffixes = {
    // programs and their parts
    "app", "appex", "bundle", "component", "framework", "kext", "plugin", "xpc",
    // libraries of photo and film programs
    "aplibrary", "cocatalog", "fcpbundle", "imovielibrary", "lrcat-data", "lrdata", "lrlibrary",
    "migratedphotolibrary", "photolibrary", "photoslibrary", "tvlibrary",
    // documents
    "rtfd", "xcassets", "xcodeproj"};

} // namespace

bool isPackageFolder(const QString &path)
{
    const QByteArray suffix = fileExtensionOf(path).toLower().toUtf8();
    return std::any_of(kPackageSuffixes.begin(), kPackageSuffixes.end(),
                       [&](const char *package) { return suffix == package; });
}

} // namespace plexa

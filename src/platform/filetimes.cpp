// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/filetimes.h"

#include "platform/fileversion.h"

#include <algorithm>

namespace plexa
{

std::optional<timespec> creationTimeOf(const QString &path)
{
    const std::optional<FileVersion> version = fileVersionAt(path);
    if (!version)
        return std::nullopt;
    const FileTime created = std::min(version->modified, version->born.value_or(version->modified));
    return timespec{created.seconds, static_cast<long>(created.nanoseconds)};
}

} // namespace plexa

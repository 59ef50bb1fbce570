// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/fileversion.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace plexa
{

namespace
{

FileTime timeOf(const struct statx_timestamp &time)
{
    return {time.tv_sec, time.tv_nsec};
}

std::optional<FileVersion> versionOf(int folder, const char *path, int flags)
{
    struct statx status = {};
    if (::statx(folder, path, flags, STATX_BASIC_STATS | STATX_BTIME, &status) != 0)
        return std::nullopt;
    return FileVersion{makedev(status.stx_dev_major, status.stx_dev_minor), status.stx_ino, status.stx_size,
                       timeOf(status.stx_mtime),
                       (status.stx_mask & STATX_BTIME) != 0 ? std::optional(timeOf(status.stx_btime))
                                                            : std::nullopt};
}

} // namespace

std::optional<FileVersion> fileVersionAt(const QString &path)
{
    return versionOf(AT_FDCWD, QFile::encodeName(path).constData(), 0);
}

std::optional<FileVersion> fileVersionOf(int descriptor)
{
    return versionOf(descriptor, "", AT_EMPTY_PATH);
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/filetimes.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>

#include <tuple>

namespace plexa
{
namespace
{

timespec timeOf(const struct statx_timestamp &time)
{
    return {static_cast<time_t>(time.tv_sec), static_cast<long>(time.tv_nsec)};
}

} // namespace

std::optional<timespec> creationTimeOf(const QString &path)
{
    struct statx found {
    };
    if (statx(AT_FDCWD, QFile::encodeName(path).constData(), 0, STATX_MTIME | STATX_BTIME, &found) != 0 ||
        (found.stx_mask & STATX_MTIME) == 0)
        return std::nullopt;
    const timespec modified = timeOf(found.stx_mtime);
    if ((found.stx_mask & STATX_BTIME) == 0)
        return modified;
    const timespec born = timeOf(found.stx_btime);
    const bool isBirthEarlier =
        std::tie(born.tv_sec, born.tv_nsec) < std::tie(modified.tv_sec, modified.tv_nsec);
    return isBirthEarlier ? born : modified;
}

} // namespace plexa

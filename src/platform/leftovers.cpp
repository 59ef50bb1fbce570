// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/leftovers.h"

#include "platform/atomicfile.h"

#include <QFile>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>

namespace plexa
{
namespace
{

/// Removes the file if nobody is writing it.
bool removeIfLeft(int folder, const char *name)
{
    const int descriptor = openat(folder, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    struct stat own {
    };
    // The lock is held until the file is gone, so that its writer, should it be about to take it, sees that.
    const bool isLeft = fstat(descriptor, &own) == 0 && S_ISREG(own.st_mode) && own.st_uid == geteuid() &&
                        flock(descriptor, LOCK_EX | LOCK_NB) == 0;
    const bool isRemoved = isLeft && unlinkat(folder, name, 0) == 0;
    ::close(descriptor);
    return isRemoved;
}

} // namespace

int removeLeftovers(const QString &folder)
{
    const std::unique_ptr<DIR, int (*)(DIR *)> entries(opendir(QFile::encodeName(folder).constData()),
                                                       closedir);
    if (!entries)
        return 0;
    int removed = 0;
    while (const dirent *entry = readdir(entries.get())) {
        if (AtomicFile::isTemporaryName(QFile::decodeName(entry->d_name)) &&
            removeIfLeft(dirfd(entries.get()), entry->d_name))
            ++removed;
    }
    return removed;
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/folderlock.h"

#include <QFile>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>

namespace plexa
{

FolderLock::FolderLock(const QString &folder)
    : m_descriptor(open(QFile::encodeName(folder + QStringLiteral("/.lock")).constData(),
                        O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600))
{
    using namespace std::chrono_literals;
    const auto end = std::chrono::steady_clock::now() + 5s;
    while (m_descriptor >= 0 && flock(m_descriptor, LOCK_EX | LOCK_NB) != 0) {
        if ((errno != EWOULDBLOCK && errno != EINTR) || std::chrono::steady_clock::now() > end)
            return;
        std::this_thread::sleep_for(5ms);
    }
}

FolderLock::~FolderLock()
{
    if (m_descriptor >= 0)
        close(m_descriptor);
}

int lockOwnFolder(const QString &path)
{
    const int folder = open(QFile::encodeName(path).constData(),
                            O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    struct stat own {
    };
    if (folder >= 0 && fstat(folder, &own) == 0 && own.st_uid == geteuid() &&
        flock(folder, LOCK_EX | LOCK_NB) == 0)
        return folder;
    if (folder >= 0)
        close(folder);
    return -1;
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

namespace plexa
{

/// Locks a folder's files for one process while several of them are changed together. The system releases the
/// lock when a process ends. Without effect where there can be no lock (a read-only folder, a suspended
/// holder). One thread.
class FolderLock final
{
public:
    /// Waits for the lock, for some seconds at most.
    /// @param folder  the file ".lock" is made in it, and stays
    explicit FolderLock(const QString &folder);
    ~FolderLock();
    FolderLock(const FolderLock &) = delete;
    FolderLock &operator=(const FolderLock &) = delete;

private:
    int m_descriptor;
};

/// Opens and locks a folder of this user for as long as the process lives, so that others can tell folders in
/// use from those of killed programs. Any thread.
/// @return a descriptor, which the caller closes; -1: the folder is a link, has another owner or is locked
int lockOwnFolder(const QString &path);

} // namespace plexa

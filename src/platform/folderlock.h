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

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

namespace plexa
{

/// Keeps other processes out of a folder's files while several of them are changed together. Works between
/// those that use it, each from its own object; the system lets go of it when a process ends, however it
/// ends. Where there can be no lock (a folder that cannot be written to, a holder that has been suspended),
/// nobody is kept out. One thread.
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

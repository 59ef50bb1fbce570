// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QTemporaryDir>

#include <memory>

namespace plexa
{

/// Folders of ours for files that other programs take over: only the user may look into them, and they go
/// with this object.
class PrivateFolders
{
public:
    PrivateFolders() = default;
    ~PrivateFolders();
    Q_DISABLE_COPY_MOVE(PrivateFolders)

    /// A new empty folder; empty when there is none to be had. Those in which no file was made for half an
    /// hour go, so that the files of a long day do not pile up.
    QString make();

    /// Removes what programs of this user left behind when they were killed. Folders of running ones stay.
    /// Any thread. @return how many were removed
    static int removeLeftovers();

private:
    std::unique_ptr<QTemporaryDir> m_root;
    int m_lock = -1; // of the root, as long as we run
    int m_count = 0;
};

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QTemporaryDir>

#include <memory>

namespace plexa
{

/// Folders for files that other programs read. Only the user can open them; they are removed with this
/// object.
class PrivateFolders
{
public:
    PrivateFolders() = default;
    ~PrivateFolders();
    Q_DISABLE_COPY_MOVE(PrivateFolders)

    /// A new empty folder; an empty string on failure. Removes folders without a new file for half an hour,
    /// so that files do not accumulate.
    QString make();

    /// Removes the folders of killed programs of this user, not those of running ones. Any thread.
    /// @return the number of removed folders
    static int removeLeftovers();

private:
    std::unique_ptr<QTemporaryDir> m_root;
    int m_lock = -1; // on the root folder, while this program runs
    int m_count = 0;
};

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

#include <optional>

namespace plexa
{

/// Tells one state of a file from another that it had before or after: which file it is and when it was
/// written. Times are in nanoseconds since 1970. Neither another name nor other permissions make it another
/// version; a file that replaces one of the same size and time is another, because it was born later.
struct FileVersion {
    quint64 device = 0;
    quint64 inode = 0;
    quint64 size = 0; ///< bytes
    qint64 modified = 0;
    qint64 born = 0; ///< 0 where the file system does not tell

    bool operator==(const FileVersion &) const = default;
    bool isSameFile(const FileVersion &other) const { return device == other.device && inode == other.inode; }
};

/// Of the file that the path leads to; none where that cannot be found out. Any thread.
std::optional<FileVersion> fileVersionAt(const QString &path);

/// Of an open file.
std::optional<FileVersion> fileVersionOf(int descriptor);

} // namespace plexa

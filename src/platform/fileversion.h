// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

#include <compare>
#include <optional>

namespace plexa
{

/// A moment, as seconds since 1970 and what goes beyond the second.
struct FileTime {
    qint64 seconds = 0;
    quint32 nanoseconds = 0;

    auto operator<=>(const FileTime &) const = default;
};

/// Tells one state of a file from another that it had before or after: which file it is and when it was
/// written. Neither another name nor other permissions make it another
/// version; a file that replaces one of the same size and time is another, because it was born later.
struct FileVersion {
    quint64 device = 0;
    quint64 inode = 0;
    quint64 size = 0; ///< bytes
    FileTime modified;
    std::optional<FileTime> born; ///< none where the file system does not tell

    bool operator==(const FileVersion &) const = default;
    bool isSameFile(const FileVersion &other) const { return device == other.device && inode == other.inode; }
};

/// Of the file that the path leads to; none where that cannot be found out. Any thread.
std::optional<FileVersion> fileVersionAt(const QString &path);

/// Of an open file.
std::optional<FileVersion> fileVersionOf(int descriptor);

} // namespace plexa

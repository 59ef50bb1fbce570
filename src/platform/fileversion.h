// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

#include <compare>
#include <optional>

namespace plexa
{

/// A moment in seconds since 1970.
struct FileTime {
    qint64 seconds = 0;
    quint32 nanoseconds = 0;

    auto operator<=>(const FileTime &) const = default;
};

/// Identifies one state of a file: which file it is and when it was written. A new name or new permissions
/// keep the version; a file that replaces one of the same size and time has another, being born later.
struct FileVersion {
    quint64 device = 0;
    quint64 inode = 0;
    quint64 size = 0; ///< bytes
    FileTime modified;
    std::optional<FileTime> born; ///< none where the file system does not record it

    bool operator==(const FileVersion &) const = default;
    bool isSameFile(const FileVersion &other) const { return device == other.device && inode == other.inode; }
};

/// Of the file that the path leads to; none where it cannot be determined. Any thread.
std::optional<FileVersion> fileVersionAt(const QString &path);

/// Of an open file.
std::optional<FileVersion> fileVersionOf(int descriptor);

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"

#include <functional>
#include <string>
#include <vector>

namespace plexa
{

/// A photo on the command line or in a folder, or the reason why it cannot be read.
struct PhotoPath {
    QString path;
    QString failure; ///< why it cannot be read, if that is known already; else empty
};

/// The path as a text, with a failure if the text cannot be converted back to the path.
PhotoPath decodedPath(const std::string &path);

/// The result of a search for photos.
struct PhotoSearch {
    std::vector<PhotoPath> photos;
    std::vector<PhotoPath> notSearched; ///< unreadable folders, and folders with too long a path
};

/// The photos at these paths, in order: each file, whatever its name, and in each folder the files whose
/// suffix is that of a picture format, sorted by name, folders below it included. Hidden entries, package
/// folders and folders that were searched before are left out. Photos that cannot be read (unknown camera raw
/// formats, names that are not text, unreachable files) are included, so that reading them reports why.
/// @param paths      as the shell passes them, in the file system's encoding
/// @param leftOut    a folder that is skipped below the paths: the folder of the copies
/// @param isStopped  called before every entry of a folder; true ends the search with the present result
/// @return a failure when a path does not exist
[[nodiscard]] Result<PhotoSearch> photosAt(const std::vector<std::string> &paths, const std::string &leftOut,
                                           const std::function<bool()> &isStopped);

} // namespace plexa

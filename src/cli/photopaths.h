// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"

#include <functional>
#include <string>
#include <vector>

namespace plexa
{

/// A photo that was asked for, or what stands in its place.
struct PhotoPath {
    QString path;
    QString failure; ///< why it cannot be had, where that is known already; else empty
};

/// The path as a text, with a failure where that text would not lead back to the file.
PhotoPath decodedPath(const std::string &path);

/// What a search for photos found.
struct PhotoSearch {
    std::vector<PhotoPath> photos;
    std::vector<PhotoPath>
        notSearched; ///< folders that could not be looked through, paths too long to follow
};

/// The photos that these paths stand for, in order: a file is one whatever it is called, a folder gives the
/// files below it whose suffix is that of a picture format, sorted by name; hidden entries, package folders
/// and folders seen already are left out. A photo whose name is no text stands there as a failure.
/// Photos of formats that cannot be read (camera raw) are among them, so that reading them says so; so are
/// files that may be there but cannot be reached.
/// @param paths      as the shell gives them, in the file system's encoding
/// @param leftOut    a folder that is not looked into when it lies below one of the paths: where copies go
/// @param isStopped  asked before every entry of a folder; true: the search ends with what it has
/// @return a failure when a path does not exist
[[nodiscard]] Result<PhotoSearch> photosAt(const std::vector<std::string> &paths, const std::string &leftOut,
                                           const std::function<bool()> &isStopped);

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"

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

/// The photos that these paths stand for, in order: a file is one whatever it is called, a folder gives the
/// files below it whose suffix is that of a picture format, sorted by name; hidden entries, package folders
/// and circles of symbolic links are left out. A folder that cannot be read, and a name that is no text,
/// stand there as failures.
/// Photos of formats that cannot be read (camera raw) are among them, so that reading them says so.
/// @param paths     as the shell gives them, in the file system's encoding
/// @param leftOut   a folder that is not looked into when it lies below one of the paths: where copies go
/// @return a failure when a path does not exist
[[nodiscard]] Result<std::vector<PhotoPath>> photosAt(const std::vector<std::string> &paths,
                                                      const std::string &leftOut);

} // namespace plexa

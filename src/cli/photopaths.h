// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"

#include <string>
#include <vector>

namespace CLI
{
class App;
class Option;
class Validator;
} // namespace CLI

namespace plexa
{

/// Validator of options whose value must not be empty.
CLI::Validator someText();

/// Validator of options that name a file or a folder. A path that is not valid text would become another
/// path.
CLI::Validator somePath();

/// Declares the arguments that are paths. They are used as they are: the parser would read "[a,b]" as a list
/// of two paths. The caller checks whether there are any.
CLI::Option *addPaths(CLI::App &command, const char *name, std::vector<std::string> &paths,
                      const char *description);

/// An argument, or a file found in a folder.
struct PhotoPath {
    QString path;
    QString failure;      ///< why it cannot be read, if known already; else empty
    bool isFound = false; ///< in a folder; else named itself
};

/// The path as a text, with a failure if the text cannot be converted back to the path.
PhotoPath decodedPath(const std::string &path);

/// What photosAt() found.
struct PhotoSearch {
    std::vector<PhotoPath> photos;
    std::vector<PhotoPath> notRead; ///< paths without a file, unreadable folders, folders with a long path
};

/// The photos at these paths, in order: each file, and in each folder and those below it the files with the
/// suffix of a picture format, sorted by name. Hidden entries, package folders and folders that were searched
/// before are left out. Photos that cannot be read (formats with a known suffix and no reader, names that are
/// not text, unreachable files) are included, so that reading them reports why.
/// @param paths     as the shell passes them, in the file system's encoding
/// @param recurses  enters the folders in folders
PhotoSearch photosAt(const std::vector<std::string> &paths, bool recurses);

} // namespace plexa

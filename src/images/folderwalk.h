// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/imageformat.h"

#include <QString>

#include <functional>
#include <optional>
#include <set>
#include <vector>

namespace plexa
{

/// Walks folders and reports the picture files in them, sorted by name within a folder, "9" before "10". Each
/// folder is entered once in a walk, so loops of symbolic links end; package folders are not entered. One
/// thread at a time.
class FolderWalk final
{
public:
    /// A file or folder that cannot be inspected.
    struct Unreadable {
        QString path;
        QString reason; ///< follows the path
        /// A single picture; else a folder, which may hold any number, or a path too long to be opened.
        bool isPhoto = false;
    };

    struct Visitor {
        std::function<void(const QString &path)> found; ///< a picture file
        std::function<void(const Unreadable &unreadable)> unreadable;
        std::function<bool()> isStopped; ///< asked before every entry
    };

    struct Rules {
        bool entersFolders = true;                           ///< in folders
        bool entersHiddenFolders = true;                     ///< that were not given themselves
        bool (*isWanted)(const QString &path) = isImageFile; ///< is this, which is no folder, a picture file?
    };

    explicit FolderWalk(Visitor visitor);
    FolderWalk(Visitor visitor, const Rules &rules);

    /// Reports the path itself, or, where it is a folder and `recursive`, the pictures below it.
    void scanImagesAtPath(const QString &path, bool recursive);

    /// Reports the pictures below the folder, even if its name is that of a package.
    void scanFolder(const QString &path);

private:
    struct FolderId {
        quint64 device;
        quint64 inode;
        auto operator<=>(const FolderId &) const = default;
    };
    struct Entry;

    static std::optional<FolderId> folderAt(const QString &path);
    static void sortNaturally(std::vector<Entry> &entries);
    void list(const QString &path);
    void visit(const Entry &entry);

    const Visitor m_visitor;
    const Rules m_rules;
    std::set<FolderId> m_visited;
};

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/mainthreadcalls.h"

#include <QStringList>

#include <atomic>
#include <functional>
#include <optional>
#include <set>
#include <thread>

namespace plexa
{

/// Walks folders and tells of the picture files in them, in the order in which the file system lists them:
/// nothing is sorted. Each folder is entered once in a walk, so circles of symbolic links end; package
/// folders are not entered. One thread at a time.
class FolderWalk final
{
public:
    struct Visitor {
        std::function<void(const QString &path)> found; ///< a picture file
        /// a folder that could not be listed, a picture or folder whose name is no valid text, a path that is
        /// too long to be opened
        std::function<void(const QString &path)> unreadable;
        std::function<bool()> isStopped; ///< asked before every entry
    };

    explicit FolderWalk(Visitor visitor)
        : m_visitor(std::move(visitor))
    {
    }

    /// Tells of the path itself, or, where it is a folder and `recursive`, of what is below it.
    void scanImagesAtPath(const QString &path, bool recursive);

private:
    struct FolderId {
        quint64 device;
        quint64 inode;
        auto operator<=>(const FolderId &) const = default;
    };

    static std::optional<FolderId> enterableFolder(const QString &path);
    void scanFolder(const QString &path);

    const Visitor m_visitor;
    std::set<FolderId> m_visited;
};

/// A walk over many paths on a thread of its own, which hands the files over in batches.
class ImageScan final
{
public:
    /// Called on the main thread.
    struct Handlers {
        std::function<void(const QStringList &paths)> found;
        std::function<void(const QStringList &paths)> unreadable; ///< before finished(), when there are any
        std::function<void()> finished; ///< after the last batch, also when the scan was stopped
    };

    /// @param calls  of the main thread; outlives this object
    ImageScan(MainThreadCalls &calls, Handlers handlers);
    /// Stops and waits for the thread.
    ~ImageScan();

    /// Begins to walk over these paths, in order. Nothing may run.
    void start(const QStringList &paths);

    /// No further file is looked at; finished() is still called. Any thread.
    void stop() { m_isStopped = true; }
    bool isStopped() const { return m_isStopped; }

private:
    void run(const QStringList &paths);

    MainThreadCalls &m_calls;
    const Handlers m_handlers;
    std::atomic_bool m_isStopped = false;
    std::jthread m_thread;
};

} // namespace plexa

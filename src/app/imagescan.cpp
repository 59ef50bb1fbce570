// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/imagescan.h"

#include "imageio/imagefiletype.h"
#include "imageio/imageformat.h"
#include "platform/filenames.h"
#include "platform/packagefolder.h"

#include <QFile>

#include <sys/stat.h>

#include <chrono>
#include <climits>
#include <filesystem>
#include <string>
#include <vector>

namespace plexa
{

namespace
{

using Clock = std::chrono::steady_clock;

// Often enough to see the list grow, seldom enough not to keep the window busy.
constexpr auto kBatchInterval = std::chrono::milliseconds(50);

} // namespace

/// Who the folder is; nothing where the path leads to a file, a package or nowhere.
std::optional<FolderWalk::FolderId> FolderWalk::enterableFolder(const QString &path)
{
    struct stat status = {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0 || !S_ISDIR(status.st_mode) ||
        isPackageFolder(path))
        return std::nullopt;
    return FolderId{status.st_dev, status.st_ino};
}

void FolderWalk::scanImagesAtPath(const QString &path, bool recursive)
{
    const std::optional<FolderId> folder = recursive ? enterableFolder(path) : std::nullopt;
    if (!folder) {
        if (isImageFile(path))
            m_visitor.found(path);
    } else if (m_visited.insert(*folder).second) {
        scanFolder(path);
    }
}

void FolderWalk::scanFolder(const QString &path)
{
    namespace fs = std::filesystem;
    // Listed whole before any of it is entered, so that a deep tree does not take a file handle a level.
    std::vector<std::string> entries; // a fs::path would keep its parts as well
    std::error_code error;
    for (fs::directory_iterator it(QFile::encodeName(path).toStdString(), error), end;
         !error && it != end && !m_visitor.isStopped(); it.increment(error))
        entries.push_back(it->path().native());
    if (error)
        m_visitor.unreadable(path);
    for (const std::string &entry : entries) {
        if (m_visitor.isStopped())
            return;
        const QByteArray bytes = QByteArray::fromStdString(entry);
        const QString text = QFile::decodeName(bytes);
        if (bytes.size() >= PATH_MAX)
            m_visitor.unreadable(text); // no file can be opened by such a path
        else if (QFile::encodeName(text) == bytes)
            scanImagesAtPath(text, true);
        else if (fs::is_directory(entry, error) || imageFormatOfSuffix(fileExtensionOf(text)))
            m_visitor.unreadable(text); // the text would not lead back to the file
    }
}

ImageScan::ImageScan(MainThreadCalls &calls, Handlers handlers)
    : m_calls(calls)
    , m_handlers(std::move(handlers))
{
}

ImageScan::~ImageScan()
{
    stop();
}

void ImageScan::start(const QStringList &paths)
{
    if (m_thread.joinable())
        m_thread.join();
    m_isStopped = false;
    m_thread = std::jthread([this, paths] { run(paths); });
}

void ImageScan::run(const QStringList &paths)
{
    QStringList batch;
    QStringList unreadable;
    Clock::time_point lastBatch; // the first file is shown at once
    const auto handOver = [&] {
        if (!batch.isEmpty())
            m_calls.post([this, found = std::exchange(batch, {})] { m_handlers.found(found); });
        lastBatch = Clock::now();
    };
    FolderWalk::Visitor visitor;
    visitor.found = [&](const QString &path) {
        batch.append(path);
        if (Clock::now() - lastBatch > kBatchInterval)
            handOver();
    };
    visitor.unreadable = [&](const QString &path) { unreadable.append(path); };
    visitor.isStopped = [this] { return isStopped(); };
    for (const QString &path : paths) {
        if (isStopped())
            break;
        // A walk of its own: a folder that is given twice counts twice.
        FolderWalk(visitor).scanImagesAtPath(path, true);
    }
    handOver();
    m_calls.post([this, unreadable] {
        if (!unreadable.isEmpty())
            m_handlers.unreadable(unreadable);
        m_handlers.finished();
    });
}

} // namespace plexa

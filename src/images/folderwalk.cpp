// SPDX-License-Identifier: GPL-3.0-or-later

#include "images/folderwalk.h"

#include "imageio/imageformat.h"
#include "platform/filenames.h"
#include "platform/naturalorder.h"

#include <QCoreApplication>
#include <QFile>

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>

namespace plexa
{

namespace
{

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(FolderWalk)
};

constexpr std::array kPackageSuffixes = {
    // programs and their parts
    "app", "appex", "bundle", "component", "framework", "kext", "plugin", "xpc",
    // libraries of photo and film programs
    "aplibrary", "cocatalog", "fcpbundle", "imovielibrary", "lrcat-data", "lrdata", "lrlibrary",
    "migratedphotolibrary", "photolibrary", "photoslibrary", "tvlibrary",
    // documents
    "rtfd", "xcassets", "xcodeproj"};

/// Whether people see a folder of this name as a single file: an application, the library of another photo
/// program.
bool isPackageFolder(const QString &path)
{
    const QByteArray suffix = fileExtensionOf(path).toLower().toUtf8();
    return std::find(kPackageSuffixes.begin(), kPackageSuffixes.end(), suffix) != kPackageSuffixes.end();
}

} // namespace

struct FolderWalk::Entry {
    std::string path; // a fs::path would keep its parts as well
    bool isFolder;    // as its parent lists it
};

/// By name, as NaturalOrder has it; equal names by their bytes.
void FolderWalk::sortNaturally(std::vector<Entry> &entries)
{
    const NaturalOrder order;
    std::vector<std::pair<NaturalOrder::Key, Entry>> keyed;
    keyed.reserve(entries.size());
    for (Entry &entry : entries) {
        const QString path = QFile::decodeName(QByteArray::fromStdString(entry.path));
        keyed.emplace_back(order.keyOf(path.mid(path.lastIndexOf(u'/') + 1)), std::move(entry));
    }
    std::sort(keyed.begin(), keyed.end(), [](const auto &one, const auto &other) {
        const int difference = one.first.compare(other.first);
        return difference != 0 ? difference < 0 : one.second.path < other.second.path;
    });
    std::transform(keyed.begin(), keyed.end(), entries.begin(),
                   [](auto &entry) { return std::move(entry.second); });
}

FolderWalk::FolderWalk(Visitor visitor)
    : FolderWalk(std::move(visitor), Rules())
{
}

FolderWalk::FolderWalk(Visitor visitor, const Rules &rules)
    : m_visitor(std::move(visitor))
    , m_rules(rules)
{
}

/// None, with errno as stat() sets it, where the path does not lead to a folder.
std::optional<FolderWalk::FolderId> FolderWalk::folderAt(const QString &path)
{
    struct stat status = {};
    errno = 0;
    if (::stat(QFile::encodeName(path).constData(), &status) != 0 || !S_ISDIR(status.st_mode))
        return std::nullopt;
    return FolderId{status.st_dev, status.st_ino};
}

void FolderWalk::scanImagesAtPath(const QString &path, bool recursive)
{
    if (recursive && !isPackageFolder(path) && folderAt(path))
        scanFolder(path);
    else if (m_rules.isWanted(path))
        m_visitor.found(path);
}

void FolderWalk::scanFolder(const QString &path)
{
    const std::optional<FolderId> folder = folderAt(path);
    if (folder && m_visited.insert(*folder).second)
        list(path);
}

void FolderWalk::list(const QString &path)
{
    namespace fs = std::filesystem;
    // Listed whole before any of it is entered, so that a deep tree does not take a file handle a level.
    std::vector<Entry> entries;
    std::error_code error;
    std::error_code ignored;
    for (fs::directory_iterator it(QFile::encodeName(path).toStdString(), error), end;
         !error && it != end && !m_visitor.isStopped(); it.increment(error))
        entries.push_back({it->path().native(), it->is_directory(ignored)});
    if (error) {
        const QString why = QString::fromStdString(error.message());
        m_visitor.unreadable({path, Texts::tr("the folder cannot be read: %1").arg(why)});
    }
    sortNaturally(entries);
    for (const Entry &entry : entries) {
        if (m_visitor.isStopped())
            return;
        visit(entry);
    }
}

void FolderWalk::visit(const Entry &entry)
{
    const QByteArray bytes = QByteArray::fromStdString(entry.path);
    const QString path = QFile::decodeName(bytes);
    const bool isHidden = path.mid(path.lastIndexOf(u'/') + 1).startsWith(u'.');
    if ((isHidden && !(entry.isFolder && m_rules.entersHiddenFolders)) ||
        (entry.isFolder && !m_rules.entersFolders))
        return;
    const bool isPhoto = !entry.isFolder && imageFormatOfSuffix(fileExtensionOf(path));
    const bool isTooLong = bytes.size() >= PATH_MAX; // nothing can be opened by such a path
    if (isTooLong || QFile::encodeName(path) != bytes) {
        if (isTooLong && (entry.isFolder || isPhoto))
            m_visitor.unreadable({path, Texts::tr("its path is too long")});
        else if (entry.isFolder || isPhoto) // the text would not lead back to the file
            m_visitor.unreadable({path, Texts::tr("its name is not valid UTF-8"), isPhoto});
        return;
    }
    const std::optional<FolderId> folder = folderAt(path);
    const int error = errno;
    if (!folder && (error == EACCES || error == EPERM) && (entry.isFolder || isPhoto)) {
        const QString why = QString::fromStdString(std::generic_category().message(error));
        m_visitor.unreadable({path, Texts::tr("it cannot be read: %1").arg(why), isPhoto});
    } else if (!folder || isPackageFolder(path)) {
        if (!folder && m_rules.isWanted(path))
            m_visitor.found(path);
    } else if (m_visited.insert(*folder).second) {
        list(path);
    }
}

} // namespace plexa

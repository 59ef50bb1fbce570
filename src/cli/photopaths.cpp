// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/photopaths.h"

#include "imageio/imageformat.h"
#include "platform/packagefolder.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <filesystem>
#include <set>

namespace plexa
{

namespace
{

namespace fs = std::filesystem;

// Photos that people expect to be found, although they cannot be read.
constexpr std::array kUnreadableSuffixes = {"jxl", "x3f"};

bool isPhotoSuffix(const QString &suffix)
{
    const QByteArray lower = suffix.toLower().toLatin1();
    return imageFormatOfSuffix(suffix) ||
           std::any_of(kUnreadableSuffixes.begin(), kUnreadableSuffixes.end(),
                       [&](const char *unreadable) { return lower == unreadable; });
}

class Scan
{
public:
    /// @param leftOut  an absolute path without links, or empty
    Scan(std::vector<PhotoPath> &photos, const fs::path &leftOut)
        : m_photos(photos)
        , m_leftOut(leftOut)
    {
    }

    void folder(const fs::path &path)
    {
        std::error_code error;
        const fs::path canonical = fs::canonical(path, error);
        if (!error && !m_visited.insert(canonical).second)
            return;
        std::vector<fs::path> entries;
        for (fs::directory_iterator it(path, error), end; !error && it != end; it.increment(error))
            entries.push_back(it->path());
        if (error)
            m_photos.push_back(
                {decodedPath(path.native()).path, QStringLiteral("the folder cannot be read")});
        std::sort(entries.begin(), entries.end());
        for (const fs::path &entry : entries)
            take(entry);
    }

private:
    void take(const fs::path &entry)
    {
        if (entry.filename().native().starts_with('.'))
            return;
        const PhotoPath photo = decodedPath(entry.native());
        std::error_code ignored;
        if (fs::is_directory(entry, ignored)) {
            if (!isPackageFolder(photo.path) &&
                (m_leftOut.empty() || fs::canonical(entry, ignored) != m_leftOut))
                folder(entry);
        } else if (isPhotoSuffix(QFileInfo(photo.path).suffix())) {
            m_photos.push_back(photo);
        }
    }

    std::vector<PhotoPath> &m_photos;
    const fs::path m_leftOut;
    std::set<fs::path> m_visited;
};

} // namespace

PhotoPath decodedPath(const std::string &path)
{
    const QByteArray bytes = QByteArray::fromStdString(path);
    const QString text = QFile::decodeName(bytes);
    if (QFile::encodeName(text) == bytes)
        return {text, {}};
    return {text, QStringLiteral("its name is not valid UTF-8")};
}

Result<std::vector<PhotoPath>> photosAt(const std::vector<std::string> &paths, const std::string &leftOut)
{
    std::vector<PhotoPath> photos;
    std::error_code ignored;
    Scan scan(photos, fs::canonical(leftOut, ignored));
    for (const std::string &path : paths) {
        std::error_code error;
        const fs::file_status status = fs::status(path, error);
        if (!fs::exists(status))
            return fail(QStringLiteral("there is no file or folder \"%1\"").arg(decodedPath(path).path));
        if (fs::is_directory(status))
            scan.folder(path);
        else
            photos.push_back(decodedPath(path));
    }
    return photos;
}

} // namespace plexa

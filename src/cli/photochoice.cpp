// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/photochoice.h"

#include "images/copywriter.h"
#include "platform/orderedwork.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>

#include <sys/stat.h>

#include <algorithm>

namespace plexa
{
namespace
{

/// The same text for all paths of one entry of a folder, or of one file. Resolves each folder once.
class PhotoKeys
{
public:
    QString ofEntry(const QString &path)
    {
        const QFileInfo info(path);
        const QString folder = info.path();
        auto found = m_folders.find(folder);
        if (found == m_folders.end())
            found = m_folders.insert(folder, QFileInfo(folder).canonicalFilePath());
        return *found + u'/' + info.fileName();
    }

    /// Only a file with several links is identified by its number: some file systems number files anew or
    /// all alike.
    QString ofFile(const QString &path)
    {
        const QFileInfo info(path);
        struct stat status = {};
        if (::stat(QFile::encodeName(path).constData(), &status) == 0 && status.st_nlink > 1)
            return QStringLiteral("%1 %2").arg(status.st_dev).arg(status.st_ino);
        return info.isSymLink() && info.exists() ? ofEntry(info.canonicalFilePath()) : ofEntry(path);
    }

private:
    QHash<QString, QString> m_folders; // by the folder as given
};

} // namespace

LeftOutPhotos leaveOutRepetitions(PhotoSearch &search)
{
    LeftOutPhotos leftOut;
    PhotoKeys keys;
    QHash<QString, std::size_t> places;
    std::vector<PhotoPath> photos;
    for (PhotoPath &photo : search.photos) {
        const QString key = keys.ofFile(photo.path);
        const auto found = photo.failure.isEmpty() ? places.constFind(key) : places.constEnd();
        if (found == places.constEnd()) {
            places.insert(key, photos.size());
            photos.push_back(std::move(photo));
            continue;
        }
        photos[*found].isFound = photos[*found].isFound && photo.isFound;
        const bool isOtherName = keys.ofEntry(photo.path) != keys.ofEntry(photos[*found].path);
        if (isOtherName && leftOut.count++ == 0)
            leftOut.first = photo.path;
    }
    search.photos = std::move(photos);
    return leftOut;
}

LeftOutPhotos leaveOutCopies(PhotoSearch &search, int threads)
{
    LeftOutPhotos leftOut;
    if (std::none_of(search.photos.begin(), search.photos.end(),
                     [](const PhotoPath &p) { return p.isFound; }))
        return leftOut;
    std::vector<char> areCopies(search.photos.size()); // not bits: each thread writes its own element
    OrderedWork work;
    work.count = search.photos.size();
    work.threads = threads;
    work.work = [&](std::size_t i) {
        const PhotoPath &photo = search.photos[i];
        areCopies[i] = photo.isFound && photo.failure.isEmpty() && isWrittenCopy(photo.path);
    };
    work.deliver = [&](std::size_t i) {
        if (areCopies[i] && leftOut.count++ == 0)
            leftOut.first = search.photos[i].path;
    };
    runOrdered(work);
    std::size_t i = 0;
    std::erase_if(search.photos, [&](const PhotoPath &) { return areCopies[i++] != 0; });
    return leftOut;
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/photopaths.h"

#include "imageio/imageformat.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

#include <array>

namespace plexa
{

namespace
{

// Folders that people see as one file.
constexpr std::array kPackageSuffixes = {"app",           "bundle", "framework",
                                         "photoslibrary", "lrdata", "lrlibrary"};

bool isPackage(const QFileInfo &folder)
{
    const QByteArray suffix = folder.suffix().toLower().toLatin1();
    return std::any_of(kPackageSuffixes.begin(), kPackageSuffixes.end(),
                       [&](const char *package) { return suffix == package; });
}

void scan(const QString &folder, QSet<QString> &visited, QStringList &photos)
{
    const QString canonical = QFileInfo(folder).canonicalFilePath();
    if (canonical.isEmpty() || visited.contains(canonical))
        return;
    visited.insert(canonical);
    const QFileInfoList entries =
        QDir(folder).entryInfoList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    for (const QFileInfo &entry : entries) {
        if (!entry.isDir()) {
            if (imageFormatOfSuffix(entry.suffix()))
                photos.append(entry.filePath());
        } else if (!isPackage(entry)) {
            scan(entry.filePath(), visited, photos);
        }
    }
}

} // namespace

Result<QStringList> photosAt(const QStringList &paths)
{
    QStringList photos;
    QSet<QString> visited;
    for (const QString &path : paths) {
        const QFileInfo info(path);
        if (!info.exists())
            return fail(QStringLiteral("there is no file or folder \"%1\"").arg(path));
        if (info.isDir())
            scan(path, visited, photos);
        else
            photos.append(path);
    }
    return photos;
}

} // namespace plexa

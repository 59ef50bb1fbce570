// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "support/testfolder.h"

#include <QDirIterator>
#include <QTest>

namespace plexa::test
{

/// The folder of real photos: the one that the variable PLEXA_PHOTOS names, else ../shared/photos beside the
/// source tree. An empty string where there is none: the test is skipped then, see PLEXA_NEEDS_PHOTOS.
inline QString photosFolder()
{
    QString folder = qEnvironmentVariable("PLEXA_PHOTOS");
    if (folder.isEmpty())
        folder = sourceFolder() + QStringLiteral("/../shared/photos");
    return QFileInfo(folder).isDir() ? QDir(folder).canonicalPath() : QString();
}

/// The path of one of the real photos, such as "jpeg/nikon-d70.jpg".
inline QString realPhoto(const QString &name)
{
    return photosFolder() + u'/' + name;
}

inline QString realPhoto(const char *name)
{
    return realPhoto(QString::fromUtf8(name));
}

/// The paths of all real photos, sorted.
inline QStringList photoPaths()
{
    QStringList paths;
    QDirIterator files(photosFolder(), QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        if (!path.endsWith(u"README.md"))
            paths += path;
    }
    paths.sort();
    return paths;
}

} // namespace plexa::test

/// Skips the test function where the folder of real photos is absent.
#define PLEXA_NEEDS_PHOTOS()                                                                                 \
    do {                                                                                                     \
        if (plexa::test::photosFolder().isEmpty())                                                           \
            QSKIP("there is no folder of real photos (PLEXA_PHOTOS)");                                       \
    } while (false)

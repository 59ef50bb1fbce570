// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QDir>
#include <QDirIterator>
#include <QFile>

namespace plexa::test
{

/// All bytes of a file; null when it cannot be read.
inline QByteArray contentsOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Writes a whole file, and creates its folder. @return false when that fails
inline bool writeFile(const QString &path, const QByteArray &contents)
{
    QFile file(path);
    return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly) &&
           file.write(contents) == contents.size();
}

/// The names of everything in a folder, hidden and broken links included, sorted.
inline QStringList namesIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                                  QDir::Name);
}

/// The paths of everything below a folder, relative to it, sorted.
inline QStringList pathsBelow(const QString &folder)
{
    QStringList paths;
    QDirIterator found(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                       QDirIterator::Subdirectories);
    while (found.hasNext())
        paths.append(QDir(folder).relativeFilePath(found.next()));
    paths.sort();
    return paths;
}

} // namespace plexa::test

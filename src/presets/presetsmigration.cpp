// SPDX-License-Identifier: GPL-3.0-or-later

#include "presets/presetsmigration.h"

#include "platform/applicationname.h"

#include <QDir>
#include <QFileInfo>

namespace plexa
{
namespace
{

bool haveSameContents(const QString &path, const QString &other)
{
    // Opening a pipe would block, and the folder with it.
    if (!QFileInfo(path).isFile() || !QFileInfo(other).isFile())
        return false;
    QFile a(path);
    QFile b(other);
    return a.size() == b.size() && a.open(QIODevice::ReadOnly) && b.open(QIODevice::ReadOnly) &&
           a.readAll() == b.readAll();
}

bool moveOrBackupPreviousVersionConfigFile(const QString &name, const QString &from, const QString &to)
{
    const QString oldPath = from + u'/' + name;
    if (!QFileInfo::exists(oldPath))
        return true;
    if (!QFileInfo(oldPath).isFile()) // a pipe has no end to copy to
        return false;
    const QFileInfo info(name);
    const QString backup =
        QStringLiteral("%1/%2 - older backup.%3").arg(to, info.completeBaseName(), info.suffix());
    // The copy may exist since an interrupted start.
    if (!QFile::copy(oldPath, backup) && !haveSameContents(oldPath, backup))
        return false;
    const QString newPath = to + u'/' + name;
    return QFileInfo::exists(newPath) || QFile::rename(oldPath, newPath);
}

} // namespace

void updateOldApplicationSupportDirectoryIfNeeded(const QString &supportFolder)
{
    const QString oldFolder =
        QDir::cleanPath(supportFolder + QStringLiteral("/../../") + firstVersionApplicationName());
    if (!QFileInfo(oldFolder).isDir())
        return;
    for (const char *name :
         {"WPresets.pxwpr", "SPresets.pxspr", "QuickSPreset.pxspr", "QuickWPreset.pxwpr"}) {
        if (!moveOrBackupPreviousVersionConfigFile(QLatin1StringView(name), oldFolder, supportFolder))
            return;
    }
    // The target of a link belongs to another program or user.
    if (QFileInfo(oldFolder).isSymLink())
        QFile::remove(oldFolder);
    else
        QDir(oldFolder).removeRecursively();
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/filemanager.h"

#include "ui/window/applicationservice.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>

namespace plexa
{

namespace
{

constexpr qsizetype kMaxFolders = 5; // each is a window

void openFolders(const QStringList &paths)
{
    QStringList folders;
    for (const QString &path : paths)
        folders.append(QFileInfo(path).absolutePath());
    folders.removeDuplicates();
    for (const QString &folder : folders.mid(0, kMaxFolders))
        QDesktopServices::openUrl(QUrl::fromLocalFile(folder));
}

} // namespace

void showFilesInFileManager(const QStringList &paths)
{
    if (!ApplicationService::hasSessionBus() || !QDBusConnection::sessionBus().isConnected()) {
        openFolders(paths);
        return;
    }
    QStringList uris;
    for (const QString &path : paths)
        uris.append(QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded));
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call << uris << QString();
    auto *const watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, paths] {
        if (watcher->isError())
            openFolders(paths);
        watcher->deleteLater();
    });
}

} // namespace plexa

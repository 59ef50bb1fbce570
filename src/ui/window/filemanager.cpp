// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/filemanager.h"

#include "ui/window/applicationservice.h"

#include <QCoreApplication>
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

void openFolders(const QStringList &paths, const std::function<void(const QString &)> &refused)
{
    QStringList folders;
    for (const QString &path : paths)
        folders.append(QFileInfo(path).absolutePath());
    folders.removeDuplicates();
    for (const QString &folder : folders.mid(0, kMaxFolders)) {
        if (!QDesktopServices::openUrl(QUrl::fromLocalFile(folder)))
            refused(QCoreApplication::translate("plexa::FileManager", "No program could show the folder “%1”")
                        .arg(folder));
    }
}

} // namespace

void showFilesInFileManager(const QStringList &paths, const std::function<void(const QString &)> &refused)
{
    if (!ApplicationService::hasSessionBus() || !QDBusConnection::sessionBus().isConnected()) {
        openFolders(paths, refused);
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
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, paths, refused] {
        if (watcher->isError())
            openFolders(paths, refused);
        watcher->deleteLater();
    });
}

} // namespace plexa

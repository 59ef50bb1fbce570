// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QStringList>

#include <functional>

namespace plexa
{

/// Shows files in the desktop's file manager (org.freedesktop.FileManager1). Without one that supports this,
/// opens their folders. Returns at once.
/// @param refused  called with a text for the user if no program shows a folder; main thread
void showFilesInFileManager(const QStringList &paths, const std::function<void(const QString &)> &refused);

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QStringList>

namespace plexa
{

/// Shows files in the desktop's file manager (org.freedesktop.FileManager1). Without one that supports this,
/// opens their folders. Returns at once.
void showFilesInFileManager(const QStringList &paths);

} // namespace plexa

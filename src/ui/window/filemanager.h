// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QStringList>

namespace plexa
{

/// Shows files in their folders, in the desktop's file manager (org.freedesktop.FileManager1); where there is
/// none that can do this, opens the folders. Returns at once.
void showFilesInFileManager(const QStringList &paths);

} // namespace plexa

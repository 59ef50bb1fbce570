// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"

#include <QStringList>

namespace plexa
{

/// The photos that these paths stand for, in order: a file is one whatever it is called, a folder gives the
/// files below it whose suffix is that of a picture format, sorted by name; hidden entries, package folders
/// and circles of symbolic links are left out.
/// @return a failure when a path does not exist
[[nodiscard]] Result<QStringList> photosAt(const QStringList &paths);

} // namespace plexa

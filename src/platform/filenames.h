// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

namespace plexa
{

/// A file's name without its folder and its extension. A name that begins with its only dot, as hidden files
/// have it, is whole and has no extension.
QString filenameOf(const QString &path);

/// What stands behind the last dot of the file's name, as it is written; empty when there is no extension.
QString fileExtensionOf(const QString &path);

} // namespace plexa

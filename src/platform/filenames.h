// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

namespace plexa
{

/// A file's name without its folder and its extension. A hidden file's name with one dot has no extension.
QString filenameOf(const QString &path);

/// The part of the file's name after the last dot, unchanged; empty when there is no extension.
QString fileExtensionOf(const QString &path);

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

namespace plexa
{

/// Why writing a file failed, for people ("no space left on the disk"); no capital, no full stop.
/// @param error  an errno value; those without a text of our own get the system's
QString writeErrorText(int error);

/// Why a file could not be opened for reading: it does not exist, or it is a folder. One text for all files
/// that a user names.
/// @param otherwise  the text for other reasons
QString openErrorText(const QString &path, const QString &otherwise);

} // namespace plexa

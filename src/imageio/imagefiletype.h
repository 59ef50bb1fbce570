// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

namespace plexa
{

/// Is this a file of a type that the decoder reads? The suffix tells the type, by the table of formats and
/// by the system's list of file types; where it tells nothing, the first bytes do. A file with a suffix that
/// means something else is no picture, whatever it holds. Folders, pipes, hidden files and what does not
/// exist are none either. Says nothing of whether the file is whole. Any thread.
bool isImageFile(const QString &path);

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/imageformat.h"

namespace plexa
{

/// The formats that a file may be of, the likeliest first, to be tried in turn: what it is called decides
/// where its contents leave it open. A file that holds a camera's raw data is never taken for a TIFF file,
/// whose first picture would be a small preview.
/// @param device  open for reading, random access; its position is moved
/// @param head    its first bytes, up to 64
/// @param suffix  of the file's name, without the dot
/// @return empty when the contents are of no known format
QList<const ImageFormat *> formatsToTry(QIODevice &device, QByteArrayView head, const QString &suffix);

} // namespace plexa

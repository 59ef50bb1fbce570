// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/codecs/codec.h"

namespace plexa
{

/// All formats that this build reads, in the order in which contents are tested.
const QList<ImageFormat> &imageFormats();

/// The format whose contents begin like this; null if unknown.
const ImageFormat *imageFormatOfContents(QByteArrayView head);

/// The format of a file-name suffix (any letter case, no dot); null if unknown.
const ImageFormat *imageFormatOfSuffix(const QString &suffix);

/// The format of a MIME name; null if unknown.
const ImageFormat *imageFormatOfType(const QString &type);

/// How many bytes of a file identify its format.
inline constexpr qint64 kSignatureBytes = 64;

/// The formats that a file may have, the likeliest first. Its contents decide; the suffix decides where the
/// contents are ambiguous. A camera raw file is never read as TIFF, whose first picture would be a small
/// preview.
/// @param device  open for reading, random access; its position is moved
/// @param head    its first kSignatureBytes bytes
/// @param suffix  of the file's name, without the dot
/// @return empty if the contents have no known format
QList<const ImageFormat *> formatsToTry(QIODevice &device, QByteArrayView head, const QString &suffix);

/// Is this a file of a type that the decoder reads? The suffix decides, by the table of formats and by the
/// system's list of file types; without a known suffix the first bytes decide. Folders, pipes and hidden
/// files are not image files. Any thread.
bool isImageFile(const QString &path);

} // namespace plexa

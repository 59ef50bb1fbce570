// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/codecs/codec.h"

namespace plexa
{

/// All formats that this build reads, in the order in which contents are tested.
const QList<ImageFormat> &imageFormats();

/// The format whose contents begin like this; null when none does.
const ImageFormat *imageFormatOfContents(QByteArrayView head);

/// The format of that file-name suffix (any letter case, no dot); null when there is none.
const ImageFormat *imageFormatOfSuffix(const QString &suffix);

/// The format of that MIME name; null when there is none.
const ImageFormat *imageFormatOfType(const QString &type);

} // namespace plexa

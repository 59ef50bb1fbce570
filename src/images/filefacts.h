// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "images/photoservices.h"
#include "metadata/imagemetadata.h"
#include "platform/result.h"
#include "watermark/texttokens.h"

#include <functional>

namespace plexa
{

/// The facts of a photo from the headers of its file; decodes no pixels.
/// @param readPath    the file
/// @param path        the photo as the user knows it
/// @param metadataOf  the photo's metadata, from those of the file
[[nodiscard]] Result<PhotoFacts>
readFactsOfFile(const QString &readPath, const QString &path,
                const std::function<ImageMetadata(const ImageMetadata &)> &metadataOf,
                const PhotoServices &services);

} // namespace plexa

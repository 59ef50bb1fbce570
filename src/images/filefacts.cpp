// SPDX-License-Identifier: GPL-3.0-or-later

#include "images/filefacts.h"

#include "imageio/imagesource.h"
#include "images/uprighting.h"

#include <new>

namespace plexa
{

Result<PhotoFacts> readFactsOfFile(const QString &readPath, const QString &path,
                                   const std::function<ImageMetadata(const ImageMetadata &)> &metadataOf,
                                   const PhotoServices &services)
{
    try {
        const Result<ImageSource> source = ImageSource::open(readPath, services.limits);
        if (!source)
            return tl::unexpected(source.error());
        const Result<QVariantMap> properties = source->properties();
        if (!properties)
            return tl::unexpected(properties.error());
        const ImageMetadata inFile(*properties);
        const Uprighting uprighting = uprightingOf(source->info().rows.size, inFile, 1, services.limits);
        return PhotoFacts(path, metadataOf(inFile), uprighting.size(), uprighting.unscaledSize(),
                          services.locale);
    } catch (const std::bad_alloc &) {
        return fail(outOfMemoryText());
    }
}

} // namespace plexa

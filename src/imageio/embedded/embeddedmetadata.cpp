// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/embeddedmetadata.h"

#include "imageio/embedded/copyencoding.h"
#include "imageio/embedded/exif/exifvalues.h"
#include "imageio/embedded/exif/exiv2setup.h"
#include "imageio/embedded/metadatareading.h"
#include "imageio/embedded/textsoftiff.h"
#include "imageio/embedded/xmp/decodedxmp.h"
#include "metadata/propertykeys.h"

#include <new>

namespace plexa
{

struct EmbeddedMetadata::Data {
    MetadataSet set;
    QVariantMap ownProperties; ///< without facts that only a PNG's texts hold, and texts of TIFF in IPTC
    QVariantMap properties;
};

EmbeddedMetadata::EmbeddedMetadata(std::unique_ptr<Data> data)
    : m_data(std::move(data))
{
}

EmbeddedMetadata::~EmbeddedMetadata() = default;

std::shared_ptr<const EmbeddedMetadata> EmbeddedMetadata::read(QIODevice &device)
{
    auto data = std::make_unique<Data>();
    try {
        data->set = readMetadataSet(device);
        data->ownProperties = propertiesOfMetadata(data->set, decodedXmp(data->set).data);
        data->properties = withTextsOfTiff(withPngTexts(data->ownProperties, data->set.texts));
        if (const QVariantMap png = pngTextProperties(data->set.texts); !png.isEmpty())
            data->properties.insert(kCGImagePropertyPNGDictionary, png);
    } catch (const std::bad_alloc &) {
        throw;
    } catch (const std::exception &) {
        // A photo with undecodable metadata counts as one without.
        data = std::make_unique<Data>();
    }
    return std::shared_ptr<const EmbeddedMetadata>(new EmbeddedMetadata(std::move(data)));
}

std::shared_ptr<const EmbeddedMetadata> EmbeddedMetadata::none()
{
    prepareMetadataLibrary();
    return std::shared_ptr<const EmbeddedMetadata>(new EmbeddedMetadata(std::make_unique<Data>()));
}

QVariantMap EmbeddedMetadata::properties() const
{
    return m_data->properties;
}

bool EmbeddedMetadata::hasThumbnail() const
{
    const Exiv2::ExifData &exif = m_data->set.exif;
    if (exifDatum(exif, "Exif.Thumbnail.JPEGInterchangeFormat"))
        return true;
    // Where the main directory has pixels of its own, the file is a TIFF, and the second one is a page unless
    // it is marked as one of less resolution.
    const Exiv2::Exifdatum *kind = exifDatum(exif, "Exif.Thumbnail.NewSubfileType");
    const bool isReduced = kind && kind->count() > 0 && (kind->toLong() & 1);
    const bool isTiff =
        exifDatum(exif, "Exif.Image.StripOffsets") || exifDatum(exif, "Exif.Image.TileOffsets");
    return exifDatum(exif, "Exif.Thumbnail.StripOffsets") && (isReduced || !isTiff);
}

EmbeddedMetadata::Encoded EmbeddedMetadata::encodeForCopy(const QVariantMap &properties,
                                                          const CopyFacts &facts) const
{
    try {
        // Facts of the texts alone reach the copy's other places like an edit: a JPEG has no texts.
        Encoded encoded = encodedForCopy(m_data->set, m_data->ownProperties,
                                         withoutTextsOfTiff(properties, m_data->ownProperties), facts);
        encoded.texts = pngTextsForCopy(m_data->set.texts, m_data->properties, properties, facts.cleared);
        return encoded;
    } catch (const std::exception &) {
        // A copy without metadata is better than none, and better than one with an unmarked picture.
        return {.omitted = {QStringLiteral("metadata")}};
    }
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/container/picturestarts.h"
#include "imageio/container/tiffpictures.h"
#include "imageio/embedded/embeddedmetadata.h"
#include "metadata/propertykeys.h"

#include <QBuffer>

#include <cstdlib>

using namespace plexa;

namespace
{

void abortIf(bool isWrong)
{
    if (isWrong)
        std::abort();
}

} // namespace

/// The bytes are a whole file: its metadata are read and encoded for copies, unchanged, edited and cleared.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    constexpr size_t kMaxBytes = 256 * 1024;
    if (size > kMaxBytes)
        return 0;
    exifSaysAdobeRgb(QByteArrayView(data, qsizetype(size)));

    QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char *>(data), qsizetype(size));
    QBuffer file(&bytes);
    abortIf(!file.open(QIODevice::ReadOnly));
    const auto metadata = EmbeddedMetadata::read(file);
    QVariantMap properties = metadata->properties();
    EmbeddedMetadata::CopyFacts facts{QSize(640, 480), 4000};
    const auto unchanged = metadata->encodeForCopy(properties, facts);
    // The picture without its watermark must not be in the copy.
    abortIf(holdsPictureStart(unchanged.exif) && unchanged.thumbnailPlaceholder.isEmpty());

    QVariantMap iptc = properties.value(kCGImagePropertyIPTCDictionary).toMap();
    iptc.insert(kCGImagePropertyIPTCObjectName, QString(QChar(0x416)));
    properties.insert(kCGImagePropertyIPTCDictionary, iptc);
    metadata->encodeForCopy(properties, facts);
    facts.cleared = ClearedGroup::Tiff | ClearedGroup::Exif | ClearedGroup::Gps | ClearedGroup::Iptc;
    metadata->encodeForCopy({}, facts);
    facts.cleared = {};
    facts.holdsExif = facts.holdsIptc = false;
    metadata->encodeForCopy(properties, facts);
    return 0;
}

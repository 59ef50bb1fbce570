// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/storedfacts.h"

#include "imageio/container/bmpsoftware.h"
#include "imageio/container/tiffdirectoryreader.h"
#include "imageio/embedded/metadatablocks.h"

#include <QBuffer>

#include <algorithm>

namespace plexa
{

namespace
{

constexpr quint16 kOrientation = 274;
constexpr quint16 kSoftware = 305;
constexpr quint16 kXmp = 700;

int orientationOfTiff(QIODevice &device)
{
    const TiffDirectoryReader reader(device);
    const auto directory = reader.read(reader.first());
    const quint64 number = directory ? reader.number(directory->fields.value(kOrientation)) : 0;
    return number >= 1 && number <= 8 ? static_cast<int>(number) : 1;
}

} // namespace

int storedOrientation(QIODevice &device)
{
    std::optional<MetadataBlocks> blocks = readMetadataBlocks(device);
    if (!blocks) // a TIFF file is itself a TIFF structure, as EXIF is
        return orientationOfTiff(device);
    QBuffer exif(&blocks->exif);
    exif.open(QIODevice::ReadOnly);
    return orientationOfTiff(exif);
}

bool mayNameSoftware(QIODevice &device, QByteArrayView software)
{
    if (const std::optional<MetadataBlocks> blocks = readMetadataBlocks(device)) {
        const QString name = QString::fromLatin1(software);
        return blocks->exif.contains(software) || blocks->xmp.contains(software) ||
               blocks->moreXmp.contains(software) ||
               std::any_of(blocks->texts.begin(), blocks->texts.end(),
                           [&name](const PngText &text) { return text.text.contains(name); });
    }
    if (softwareOfBmp(device) == software)
        return true;
    const TiffDirectoryReader reader(device);
    const auto directory = reader.read(reader.first());
    const auto hasName = [&](quint16 tag) {
        return reader.value(directory->fields.value(tag), kMaxMetadataBytes).contains(software);
    };
    return directory && (hasName(kSoftware) || hasName(kXmp));
}

} // namespace plexa

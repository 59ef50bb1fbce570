// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/storedorientation.h"

#include "imageio/container/tiffdirectoryreader.h"
#include "imageio/embedded/metadatablocks.h"

#include <QBuffer>

namespace plexa
{

namespace
{

constexpr quint16 kOrientation = 274;

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

} // namespace plexa

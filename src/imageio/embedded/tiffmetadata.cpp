// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/tiffmetadata.h"

#include "imageio/container/imageresources.h"
#include "imageio/container/tiffdirectoryreader.h"
#include "imageio/embedded/metadatablocks.h"

#include <algorithm>

namespace plexa
{

namespace
{

constexpr quint16 kIptc = 33723;
constexpr quint16 kImageResources = 34377;
constexpr char kDataSetMarker = '\x1C';

/// Reverses each group of four bytes.
void reverseWords(QByteArray &bytes)
{
    for (qsizetype at = 0; at + 4 <= bytes.size(); at += 4)
        std::reverse(bytes.begin() + at, bytes.begin() + at + 4);
}

} // namespace

QByteArray iptcOfTiff(QIODevice &device)
{
    const TiffDirectoryReader reader(device);
    const auto directory = reader.read(reader.first());
    if (!directory)
        return {};
    QByteArray records = reader.value(directory->fields.value(kIptc), kMaxMetadataBytes);
    if (!records.startsWith(kDataSetMarker) && records.size() >= 4 && records[3] == kDataSetMarker)
        reverseWords(records);
    if (records.startsWith(kDataSetMarker))
        return records;
    return iptcOfImageResources(reader.value(directory->fields.value(kImageResources), kMaxMetadataBytes));
}

} // namespace plexa

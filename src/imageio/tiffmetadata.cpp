// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/tiffmetadata.h"

#include "imageio/imageresources.h"
#include "imageio/metadatablocks.h"
#include "imageio/tiffdirectory.h"

#include <algorithm>

namespace plexa
{

namespace
{

constexpr quint16 kIptc = 33723;
constexpr quint16 kImageResources = 34377;
constexpr char kDataSetMarker = '\x1C';

QByteArray bytesAt(QIODevice &device, quint32 at, qint64 count)
{
    return device.seek(at) ? device.read(count) : QByteArray();
}

/// The fields of the first directory.
TiffFields mainFields(QIODevice &device, quint32 at, TiffOrder order)
{
    const QByteArray count = bytesAt(device, at, 2);
    if (count.size() < 2)
        return {};
    const auto fields = qsizetype(tiffNumberAt(count.constData(), 2, order));
    return readTiffFields(bytesAt(device, at, tiffDirectoryBytes(fields)), 0, order).value_or(TiffFields());
}

QByteArray valueOf(QIODevice &device, const TiffField &field, TiffOrder order)
{
    const quint64 bytes = field.valueBytes();
    if (bytes <= 4 || bytes > quint64(kMaxMetadataBytes))
        return {};
    const QByteArray value = bytesAt(device, field.offset(order), qint64(bytes));
    return quint64(value.size()) == bytes ? value : QByteArray();
}

/// Turns each group of four bytes around.
void reverseWords(QByteArray &bytes)
{
    for (qsizetype at = 0; at + 4 <= bytes.size(); at += 4)
        std::reverse(bytes.begin() + at, bytes.begin() + at + 4);
}

} // namespace

QByteArray iptcOfTiff(QIODevice &device)
{
    const QByteArray header = bytesAt(device, 0, 8);
    const auto order = orderOfTiff(header);
    if (!order)
        return {};
    const TiffFields fields = mainFields(device, tiffNumberAt(header.constData() + 4, 4, *order), *order);
    QByteArray records = valueOf(device, fields.value(kIptc), *order);
    if (!records.startsWith(kDataSetMarker) && records.size() >= 4 && records[3] == kDataSetMarker)
        reverseWords(records);
    if (records.startsWith(kDataSetMarker))
        return records;
    return iptcOfImageResources(valueOf(device, fields.value(kImageResources), *order));
}

} // namespace plexa

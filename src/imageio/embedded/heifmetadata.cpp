// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/heifmetadata.h"

#include "imageio/container/heifbrands.h"
#include "imageio/container/heifitems.h"

#include <QtEndian>

namespace plexa
{

namespace
{

/// ISO 23008-12, A.2.1: four bytes state how far after them the TIFF structure begins.
QByteArray tiffOfExifItem(const QByteArray &item)
{
    if (item.size() < 8)
        return {};
    const qint64 offset = 4 + qint64(qFromBigEndian<quint32>(item.constData()));
    if (offset < item.size()) {
        const QByteArray rest = item.mid(qsizetype(offset));
        if (rest.startsWith("II") || rest.startsWith("MM"))
            return rest;
    }
    // Some writers count from another place, or write no offset.
    const qsizetype marker = item.left(64).indexOf(QByteArray("Exif\0\0", 6));
    if (marker >= 0)
        return item.mid(marker + 6);
    return item.startsWith("II") || item.startsWith("MM") ? item : QByteArray();
}

} // namespace

bool isHeif(QByteArrayView head)
{
    return isHeicContents(head) || isAvifContents(head);
}

MetadataBlocks readHeifBlocks(QIODevice &device)
{
    MetadataBlocks blocks;
    const Result<HeifItems> items = HeifItems::read(device);
    if (!items)
        return blocks;
    const auto contentsOf = [&](const char *type, const char *contentType) {
        const HeifItem *item = items->metadata(type, contentType);
        if (!item || item->isElsewhere || item->extents.isEmpty())
            return QByteArray();
        const qint64 size = item->extents.constLast().start + item->extents.constLast().length;
        return size <= kMaxMetadataBytes ? items->bytes(device, *item, 0, size) : QByteArray();
    };
    blocks.exif = tiffOfExifItem(contentsOf("Exif", nullptr));
    blocks.xmp = contentsOf("mime", "application/rdf+xml");
    return blocks;
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/heifmetadata.h"

#include "imageio/heifbrands.h"
#include "imageio/heiffile.h"
#include "imageio/heifitems.h"

#include <QtEndian>

namespace plexa
{

namespace
{

/// ISO 23008-12, A.2.1: four bytes tell how far behind them the TIFF structure begins.
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
    // Some writers count from elsewhere, or not at all.
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
    try {
        // The library's own reading takes very long where there are very many items.
        HeifFile file(device);
        if (!HeifItems::read(device) || !file.open("HEIC"))
            return blocks;
        blocks.exif = tiffOfExifItem(file.metadata("Exif", nullptr));
        blocks.xmp = file.metadata("mime", "application/rdf+xml");
    } catch (const std::exception &) {
        // What was read before is whole.
    }
    return blocks;
}

} // namespace plexa

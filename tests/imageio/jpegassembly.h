// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/embedded/embeddedmetadata.h"

#include <QBuffer>
#include <QImage>
#include <QtEndian>

namespace plexa::test
{

inline QByteArray bigEndian16(qsizetype number)
{
    QByteArray bytes(2, '\0');
    qToBigEndian(static_cast<quint16>(number), bytes.data());
    return bytes;
}

inline QByteArray jpegSegment(uchar marker, const QByteArray &data)
{
    return QByteArray("\xFF") + static_cast<char>(marker) + bigEndian16(data.size() + 2) + data;
}

/// A small gray JPEG that carries these metadata.
inline QByteArray jpegWith(const EmbeddedMetadata::Encoded &metadata)
{
    using namespace Qt::Literals::StringLiterals;
    QImage image(16, 16, QImage::Format_RGB32);
    image.fill(Qt::gray);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "JPEG");
    QByteArray segments;
    if (!metadata.exif.isEmpty())
        segments += jpegSegment(0xE1, "Exif\0\0"_ba + metadata.exif);
    if (!metadata.xmp.isEmpty())
        segments += jpegSegment(0xE1, "http://ns.adobe.com/xap/1.0/\0"_ba + metadata.xmp);
    if (!metadata.iptc.isEmpty()) {
        QByteArray length(4, '\0');
        qToBigEndian(static_cast<quint32>(metadata.iptc.size()), length.data());
        QByteArray resource = "Photoshop 3.0\0"
                              "8BIM\x04\x04\0\0"_ba +
                              length + metadata.iptc;
        segments += jpegSegment(0xED, resource + QByteArray(metadata.iptc.size() % 2, '\0'));
    }
    if (!metadata.comment.isEmpty())
        segments += jpegSegment(0xFE, metadata.comment);
    QByteArray file = buffer.data();
    return file.insert(2, segments);
}

} // namespace plexa::test

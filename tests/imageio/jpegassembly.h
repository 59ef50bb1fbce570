// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/embedded/embeddedmetadata.h"
#include "support/bytes.h"
#include "support/testpictures.h"

namespace plexa::test
{

inline QByteArray jpegSegment(uchar marker, const QByteArray &data)
{
    return QByteArray("\xFF") + static_cast<char>(marker) + big16(data.size() + 2) + data;
}

/// A small gray JPEG with these metadata.
inline QByteArray jpegWith(const EmbeddedMetadata::Encoded &metadata)
{
    using namespace Qt::Literals::StringLiterals;
    QByteArray segments;
    if (!metadata.exif.isEmpty())
        segments += jpegSegment(0xE1, "Exif\0\0"_ba + metadata.exif);
    if (!metadata.xmp.isEmpty())
        segments += jpegSegment(0xE1, "http://ns.adobe.com/xap/1.0/\0"_ba + metadata.xmp);
    if (!metadata.iptc.isEmpty())
        segments += jpegSegment(0xED, "Photoshop 3.0\0"
                                      "8BIM\x04\x04\0\0"_ba +
                                          big32(metadata.iptc.size()) + metadata.iptc +
                                          QByteArray(metadata.iptc.size() % 2, '\0'));
    if (!metadata.comment.isEmpty())
        segments += jpegSegment(0xFE, metadata.comment);
    return encoded(flatPicture({16, 16}), "JPEG").insert(2, segments);
}

} // namespace plexa::test

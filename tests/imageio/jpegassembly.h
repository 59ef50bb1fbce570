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

/// A dataset of IIM records.
inline QByteArray dataSet(int record, int number, const QByteArray &value)
{
    return '\x1C' + bigEndian(record, 1) + bigEndian(number, 1) + big16(value.size()) + value;
}

/// An XMP packet with one description of these attributes and elements.
inline QByteArray xmpPacket(const QByteArray &attributes, const QByteArray &elements = {})
{
    return "<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF "
           "xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description rdf:about='' " +
           attributes + '>' + elements + "</rdf:Description></rdf:RDF></x:xmpmeta>";
}

/// A field of EXIF.
struct ExifField {
    int tag;
    int type; ///< 2: text, 3: short number, 4: number, 7: bytes, 13: directory
    QByteArray value;
};

/// A big-endian directory that begins at `at`, followed by its values.
inline QByteArray exifDirectory(qsizetype at, const QList<ExifField> &fields)
{
    QByteArray table = big16(fields.size());
    QByteArray values;
    const qsizetype valuesAt = at + 2 + 12 * fields.size() + 4;
    for (const auto &[tag, type, value] : fields) {
        table += big16(tag) + big16(type) + big32(type == 3 || type == 4 || type == 13 ? 1 : value.size());
        if (value.size() <= 4) {
            table += value.leftJustified(4, '\0');
        } else {
            table += big32(valuesAt + values.size());
            values += value + QByteArray(value.size() % 2, '\0');
        }
    }
    return table + big32(0) + values;
}

/// EXIF with a maker of ten bytes, a date and these fields. The first one with more than four bytes is at 98.
inline QByteArray exifWith(const QList<ExifField> &more, const QByteArray &maker)
{
    constexpr qsizetype kPhotoAt = 8 + 2 + 2 * 12 + 4 + 10;
    using namespace Qt::Literals::StringLiterals;
    const QList<ExifField> main{{0x010F, 2, maker}, {0x8769, 4, big32(kPhotoAt)}};
    const QList<ExifField> photo{{0x9003, 2, "2020:01:01 10:00:00\0"_ba}};
    return "MM\0\x2A\0\0\0\x08"_ba + exifDirectory(8, main) + exifDirectory(kPhotoAt, photo + more);
}

} // namespace plexa::test

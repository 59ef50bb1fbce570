// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/container/tiffdirectory.h"

#include <QtEndian>

#include <array>

namespace plexa
{

void putTiffNumber(char *target, quint32 number, int bytes, TiffOrder order)
{
    const bool isBig = order == TiffOrder::BigEndian;
    if (bytes == 2)
        isBig ? qToBigEndian(quint16(number), target) : qToLittleEndian(quint16(number), target);
    else
        isBig ? qToBigEndian(number, target) : qToLittleEndian(number, target);
}

quint32 tiffNumberAt(const char *source, int bytes, TiffOrder order)
{
    const bool isBig = order == TiffOrder::BigEndian;
    if (bytes == 2)
        return isBig ? qFromBigEndian<quint16>(source) : qFromLittleEndian<quint16>(source);
    return isBig ? qFromBigEndian<quint32>(source) : qFromLittleEndian<quint32>(source);
}

std::optional<TiffOrder> orderOfTiff(QByteArrayView structure)
{
    if (structure.size() < 8)
        return {};
    if (structure.startsWith(QByteArrayView("II*\0", 4)))
        return TiffOrder::LittleEndian;
    if (structure.startsWith(QByteArrayView("MM\0*", 4)))
        return TiffOrder::BigEndian;
    return {};
}

quint64 TiffField::valueBytes() const
{
    // TIFF 6.0, section 2; 13 (a directory's place) is of a later supplement.
    constexpr std::array kBytes = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4};
    return type < kBytes.size() ? quint64(kBytes[type]) * count : 0;
}

std::optional<TiffFields> readTiffFields(QByteArrayView bytes, quint32 at, TiffOrder order)
{
    if (qsizetype(at) + 2 > bytes.size())
        return {};
    const auto count = qsizetype(tiffNumberAt(bytes.data() + at, 2, order));
    if (qsizetype(at) + tiffDirectoryBytes(count) > bytes.size())
        return {};
    TiffFields fields;
    for (qsizetype i = 0; i < count; ++i) {
        const char *field = bytes.data() + at + 2 + 12 * i;
        const auto tag = quint16(tiffNumberAt(field, 2, order));
        if (!fields.contains(tag))
            fields.insert(tag, {quint16(tiffNumberAt(field + 2, 2, order)), tiffNumberAt(field + 4, 4, order),
                                QByteArray(field + 8, 4)});
    }
    return fields;
}

QByteArray encodedTiffFields(const TiffFields &fields, TiffOrder order)
{
    QByteArray bytes(tiffDirectoryBytes(fields.size()), '\0');
    char *out = bytes.data();
    putTiffNumber(out, quint32(fields.size()), 2, order);
    out += 2;
    for (auto field = fields.begin(); field != fields.end(); ++field, out += 12) {
        putTiffNumber(out, field.key(), 2, order);
        putTiffNumber(out + 2, field->type, 2, order);
        putTiffNumber(out + 4, field->count, 4, order);
        std::copy_n(field->value.constData(), 4, out + 8);
    }
    return bytes;
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/container/tiffdirectoryreader.h"

#include <QtEndian>

#include <limits>

namespace plexa
{

namespace
{

/// The bytes of a whole number of that type without a sign; 0 for other types.
int numberBytes(quint16 type)
{
    switch (type) {
    case 3: // SHORT
        return 2;
    case 4:  // LONG
    case 13: // IFD
        return 4;
    case 16: // LONG8
    case 18: // IFD8
        return 8;
    default:
        return 0;
    }
}

} // namespace

TiffDirectoryReader::TiffDirectoryReader(QIODevice &device)
    : m_device(device)
{
    const QByteArray head = bytesAt(0, 16);
    m_order = orderOfTiff(head);
    if (!m_order && head.size() == 16) {
        m_isBig = head.startsWith(QByteArrayView("II+\0\x08\0\0\0", 8)) ||
                  head.startsWith(QByteArrayView("MM\0+\0\x08\0\0", 8));
        if (m_isBig)
            m_order = head.startsWith('I') ? TiffOrder::LittleEndian : TiffOrder::BigEndian;
    }
    if (m_order)
        m_first = numberAt(head, m_isBig ? 8 : 4, offsetBytes());
}

QByteArray TiffDirectoryReader::bytesAt(quint64 position, qint64 count) const
{
    const bool isThere = position < quint64(m_device.size()) && m_device.seek(qint64(position));
    return isThere ? m_device.read(count) : QByteArray();
}

/// 0 where the bytes end before.
quint64 TiffDirectoryReader::numberAt(const QByteArray &bytes, qsizetype at, int count) const
{
    if (!m_order || bytes.size() < at + count)
        return 0;
    const char *from = bytes.constData() + at;
    if (count < 8)
        return tiffNumberAt(from, count, *m_order);
    return *m_order == TiffOrder::BigEndian ? qFromBigEndian<quint64>(from)
                                            : qFromLittleEndian<quint64>(from);
}

std::optional<TiffDirectoryReader::Directory> TiffDirectoryReader::read(quint64 position) const
{
    constexpr quint64 kMaxFields = 65535; // what the classic form can count
    const int countBytes = m_isBig ? 8 : 2;
    const quint64 fields = numberAt(bytesAt(position, countBytes), 0, countBytes);
    if (!m_order || position < 8 || fields == 0 || fields > kMaxFields)
        return {};
    const int fieldBytes = 4 + 2 * offsetBytes();
    const auto tableBytes = qsizetype(fields) * fieldBytes;
    const QByteArray table = bytesAt(position + quint64(countBytes), tableBytes + offsetBytes());
    Directory directory;
    directory.fieldCount = int(fields);
    directory.bytes = quint64(countBytes + tableBytes + offsetBytes());
    for (qsizetype at = 0; at + fieldBytes <= qMin(table.size(), tableBytes); at += fieldBytes) {
        const auto tag = quint16(numberAt(table, at, 2));
        constexpr quint64 kMaxCount = std::numeric_limits<quint32>::max();
        if (!directory.fields.contains(tag))
            directory.fields.insert(tag, {quint16(numberAt(table, at + 2, 2)),
                                          quint32(qMin(numberAt(table, at + 4, offsetBytes()), kMaxCount)),
                                          table.mid(at + 4 + offsetBytes(), offsetBytes())});
    }
    directory.next = numberAt(table, tableBytes, offsetBytes());
    return directory;
}

quint64 TiffDirectoryReader::number(const TiffField &field) const
{
    const std::vector<quint64> all = numbers(field, 1);
    return all.empty() ? 0 : all.front();
}

std::vector<quint64> TiffDirectoryReader::numbers(const TiffField &field, quint32 most) const
{
    const int bytes = numberBytes(field.type);
    std::vector<quint64> all;
    if (bytes == 0)
        return all;
    const bool isInside = quint64(field.count) * quint64(bytes) <= quint64(offsetBytes());
    const auto wanted = qsizetype(qMin(field.count, most)) * bytes;
    const QByteArray values =
        isInside ? field.value.left(wanted) : bytesAt(numberAt(field.value, 0, offsetBytes()), wanted);
    for (qsizetype at = 0; at + bytes <= values.size(); at += bytes)
        all.push_back(numberAt(values, at, bytes));
    return all;
}

quint64 TiffDirectoryReader::positionOf(const TiffField &field) const
{
    return field.valueBytes() > quint64(offsetBytes()) ? numberAt(field.value, 0, offsetBytes()) : 0;
}

QByteArray TiffDirectoryReader::value(const TiffField &field, qint64 most) const
{
    const quint64 bytes = field.valueBytes();
    if (bytes > quint64(most))
        return {};
    if (bytes <= quint64(offsetBytes()))
        return field.value.left(qsizetype(bytes));
    const QByteArray value = bytesAt(positionOf(field), qint64(bytes));
    return quint64(value.size()) == bytes ? value : QByteArray();
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/propertylistcheck.h"

#include <QCoreApplication>

#include <limits>
#include <vector>

// The binary form: "bplist00", the objects, a table with the place of each object, and a trailer with the
// place of the table and the width of its numbers. All numbers are big-endian. An object begins with a byte
// of kind (high half) and length (low half; 15: an integer object with the length follows); arrays and
// dictionaries hold the numbers of other objects.

namespace plexa
{
namespace
{

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(plexa::PropertyList)
};

constexpr qint64 kHeaderBytes = 8;
constexpr qint64 kTrailerBytes = 32;
constexpr qint64 kMaxReferences = 4'000'000;

/// What an object unfolds into.
struct Extent {
    enum class State : quint8 { Unseen, Open, Known };
    State state = State::Unseen;
    quint8 height = 0; ///< levels below it
    /// Without null characters, at which the library cuts a text off, and which it does not survive in keys.
    bool isText = false;
    qint64 nodes = 0;
    qint64 bytes = 0;
};

class Checker
{
public:
    explicit Checker(QByteArrayView bytes)
        : m_bytes(bytes)
    {
    }

    bool isValid();
    bool isTooLarge() const { return m_isTooLarge; }

private:
    bool readTrailer();
    bool visit(quint64 object, int level);
    bool measure(qint64 at, int level, Extent &extent);
    bool measureChildren(qint64 at, qint64 count, int level, Extent &extent);
    bool areKeys(qint64 at, qint64 count) const;
    bool readLength(qint64 &at, qint64 &length) const;
    bool readNumber(qint64 at, int width, quint64 &number) const;
    bool hasRoom(qint64 at, qint64 length) const
    {
        return length >= 0 && at <= m_end && length <= m_end - at;
    }
    bool tooLarge()
    {
        m_isTooLarge = true;
        return false;
    }

    QByteArrayView m_bytes;
    qint64 m_end = 0;         // where the objects end and the table begins
    int m_placeWidth = 0;     // bytes of a place in the table
    int m_referenceWidth = 0; // bytes of an object's number
    qint64 m_references = 0;
    bool m_isTooLarge = false;
    std::vector<Extent> m_extents;
};

bool Checker::readNumber(qint64 at, int width, quint64 &number) const
{
    if (at < 0 || width < 1 || width > 8 || at > m_bytes.size() - width)
        return false;
    number = 0;
    for (int i = 0; i < width; ++i)
        number = number << 8 | static_cast<quint8>(m_bytes[at + i]);
    return true;
}

bool Checker::readTrailer()
{
    const qint64 trailer = m_bytes.size() - kTrailerBytes;
    if (trailer < kHeaderBytes || !m_bytes.startsWith("bplist00"))
        return false;
    quint64 count = 0;
    quint64 table = 0;
    m_placeWidth = static_cast<quint8>(m_bytes[trailer + 6]);
    m_referenceWidth = static_cast<quint8>(m_bytes[trailer + 7]);
    const bool isRead = readNumber(trailer + 8, 8, count) && readNumber(trailer + 24, 8, table);
    if (!isRead || m_placeWidth < 1 || m_placeWidth > 8 || m_referenceWidth < 1 || m_referenceWidth > 8)
        return false;
    if (table < quint64(kHeaderBytes) || table > quint64(trailer) || count < 1 ||
        count > (quint64(trailer) - table) / quint64(m_placeWidth))
        return false;
    m_end = static_cast<qint64>(table);
    if (count > quint64(kMaxReferences))
        return tooLarge();
    m_extents.resize(count);
    return true;
}

bool Checker::isValid()
{
    quint64 top = 0;
    return readTrailer() && readNumber(m_bytes.size() - kTrailerBytes + 16, 8, top) && visit(top, 0);
}

bool Checker::visit(quint64 object, int level)
{
    if (object >= m_extents.size() || level > kMaxPropertyListNesting)
        return false;
    Extent &extent = m_extents[object];
    if (extent.state == Extent::State::Open) // inside of itself
        return false;
    if (extent.state == Extent::State::Known)
        return level + extent.height <= kMaxPropertyListNesting;
    extent.state = Extent::State::Open;
    quint64 at = 0;
    if (!readNumber(m_end + static_cast<qint64>(object) * m_placeWidth, m_placeWidth, at) ||
        at < quint64(kHeaderBytes) || at >= quint64(m_end))
        return false;
    extent.nodes = 1;
    if (!measure(static_cast<qint64>(at), level, extent))
        return false;
    if (extent.nodes > kMaxPropertyListNodes || extent.bytes > kMaxPropertyListBytes)
        return tooLarge();
    extent.state = Extent::State::Known;
    return true;
}

bool Checker::readLength(qint64 &at, qint64 &length) const
{
    const int low = static_cast<quint8>(m_bytes[at]) & 0x0f;
    ++at;
    length = low;
    if (low < 15)
        return true;
    if (!hasRoom(at, 1) || (static_cast<quint8>(m_bytes[at]) & 0xf0) != 0x10)
        return false;
    const int exponent = static_cast<quint8>(m_bytes[at]) & 0x0f;
    quint64 number = 0;
    if (exponent > 3 || !hasRoom(at + 1, 1 << exponent) || !readNumber(at + 1, 1 << exponent, number) ||
        number > quint64(m_end))
        return false;
    at += 1 + (1 << exponent);
    length = static_cast<qint64>(number);
    return true;
}

bool Checker::measure(qint64 at, int level, Extent &extent)
{
    const int kind = static_cast<quint8>(m_bytes[at]) >> 4;
    const int low = static_cast<quint8>(m_bytes[at]) & 0x0f;
    switch (kind) {
    case 0x0: // true or false; the library knows no null
        return low == 8 || low == 9;
    case 0x1: // integers of up to 16 bytes
        return low <= 4 && hasRoom(at + 1, qint64(1) << low);
    case 0x2: // floats of 4 and 8 bytes
        return (low == 2 || low == 3) && hasRoom(at + 1, qint64(1) << low);
    case 0x3: // a date
        return low == 3 && hasRoom(at + 1, 8);
    case 0x8: // a reference inside of a keyed archive
        return low <= 3 && low != 2 && hasRoom(at + 1, low + 1);
    default:
        break;
    }
    qint64 length = 0;
    if (!readLength(at, length))
        return false;
    switch (kind) {
    case 0x4: // data
        extent.bytes = length;
        return hasRoom(at, length);
    case 0x5: // ASCII
        extent.bytes = length;
        extent.isText = hasRoom(at, length) && !m_bytes.sliced(at, length).contains('\0');
        return extent.isText;
    case 0x6: // UTF-16, which becomes UTF-8
        extent.bytes = 3 * length;
        extent.isText = hasRoom(at, 2 * length);
        for (qint64 i = 0; extent.isText && i < length; ++i)
            extent.isText = m_bytes[at + 2 * i] != 0 || m_bytes[at + 2 * i + 1] != 0;
        return extent.isText;
    case 0xa:
        return measureChildren(at, length, level, extent);
    case 0xd:
        if (length > kMaxPropertyListKeys)
            return tooLarge();
        return measureChildren(at, 2 * length, level, extent) && areKeys(at, length);
    default:
        return false;
    }
}

/// Of objects that were measured.
bool Checker::areKeys(qint64 at, qint64 count) const
{
    for (qint64 i = 0; i < count; ++i) {
        quint64 object = 0;
        if (!readNumber(at + i * m_referenceWidth, m_referenceWidth, object) || !m_extents[object].isText)
            return false;
    }
    return true;
}

bool Checker::measureChildren(qint64 at, qint64 count, int level, Extent &extent)
{
    if (!hasRoom(at, count * m_referenceWidth))
        return false;
    // Objects may lie over each other, so that a short file has many references.
    m_references += count;
    if (m_references > kMaxReferences)
        return tooLarge();
    for (qint64 i = 0; i < count; ++i) {
        quint64 child = 0;
        if (!readNumber(at + i * m_referenceWidth, m_referenceWidth, child) || !visit(child, level + 1))
            return false;
        const Extent &found = m_extents[child];
        extent.nodes += found.nodes;
        extent.bytes += found.bytes;
        if (extent.nodes > kMaxPropertyListNodes || extent.bytes > kMaxPropertyListBytes)
            return tooLarge();
        extent.height = std::max(extent.height, static_cast<quint8>(found.height + 1));
    }
    return true;
}

} // namespace

QString faultOfPropertyList(QByteArrayView bytes)
{
    if (bytes.size() > kMaxPropertyListBytes)
        return Texts::tr("it is larger than %1 MB").arg(kMaxPropertyListBytes / 1'000'000);
    Checker checker(bytes);
    if (checker.isValid())
        return {};
    return checker.isTooLarge() ? Texts::tr("it holds more than can be read") : Texts::tr("it is damaged");
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/exif/exifwriter.h"

#include <QMap>

#include <algorithm>
#include <optional>
#include <utility>

namespace plexa
{

namespace
{

constexpr uint16_t kExifPointer = 0x8769;
constexpr uint16_t kGpsPointer = 0x8825;
constexpr uint16_t kInteroperabilityPointer = 0xA005;
constexpr uint16_t kMakerNote = 0x927C;
constexpr uint16_t kThumbnailOffset = 0x0201;
constexpr uint16_t kThumbnailLength = 0x0202;
constexpr qsizetype kHeaderBytes = 8;
constexpr qsizetype kEntryBytes = 12;
// No offset in a JPEG's EXIF segment is larger.
constexpr qsizetype kMaxOffset = 65'535;

struct Entry {
    uint16_t type = 0;
    uint32_t count = 0;
    QByteArray data; ///< in the byte order of the file; more than four bytes lie outside of the directory
};

using Directory = QMap<uint16_t, Entry>; // sorted by tag, as TIFF wants it

qsizetype padded(qsizetype bytes)
{
    return bytes + bytes % 2;
}

class Writer
{
public:
    /// @param gapStart, gapEnd  bytes that are not to be used; empty: no gap
    Writer(Exiv2::ByteOrder order, qsizetype gapStart, qsizetype gapEnd)
        : m_order(order)
        , m_gapStart(gapStart)
        , m_after(padded(gapEnd))
    {
        const bool isBigEndian = order == Exiv2::bigEndian;
        m_bytes = isBigEndian ? QByteArray("MM\0\x2A", 4) : QByteArray("II\x2A\0", 4);
        m_bytes += QByteArray(4, '\0');
    }

    QByteArray number16(uint16_t number) const
    {
        Exiv2::byte buffer[2];
        Exiv2::us2Data(buffer, number, m_order);
        return QByteArray(reinterpret_cast<const char *>(buffer), 2);
    }

    QByteArray number32(qsizetype number) const
    {
        Exiv2::byte buffer[4];
        Exiv2::ul2Data(buffer, static_cast<uint32_t>(number), m_order);
        return QByteArray(reinterpret_cast<const char *>(buffer), 4);
    }

    Entry longEntry(qsizetype number) const { return {Exiv2::unsignedLong, 1, number32(number)}; }
    Entry shortEntry(uint16_t number) const { return {Exiv2::unsignedShort, 1, number16(number)}; }

    Directory directoryOf(const Exiv2::ExifData &exif, const char *group) const
    {
        Directory directory;
        for (const Exiv2::Exifdatum &datum : exif) {
            const uint16_t tag = datum.tag();
            if (datum.groupName() != group || directory.contains(tag) || tag == kExifPointer ||
                tag == kGpsPointer || tag == kInteroperabilityPointer || tag == kMakerNote ||
                directory.size() > 2000)
                continue;
            if (const auto entry = entryOf(datum))
                directory.insert(tag, *entry);
        }
        return directory;
    }

    /// Room for so many bytes: before the gap where they fit, else after it.
    qsizetype placeFor(qsizetype bytes)
    {
        qsizetype &cursor = m_before + bytes <= m_gapStart ? m_before : m_after;
        return std::exchange(cursor, cursor + padded(bytes));
    }

    void put(qsizetype at, const QByteArray &data)
    {
        if (m_bytes.size() < at + data.size())
            m_bytes.append(QByteArray(at + data.size() - m_bytes.size(), '\0'));
        std::copy(data.begin(), data.end(), m_bytes.begin() + at);
    }

    static qsizetype sizeOf(const Directory &directory)
    {
        qsizetype size = tableSize(directory);
        for (const Entry &entry : directory)
            size += entry.data.size() > 4 ? padded(entry.data.size()) : 0;
        return size;
    }

    /// Writes a directory with its values to a place of sizeOf() bytes.
    /// @param next  where the next directory of the chain begins, 0: none
    void write(qsizetype at, const Directory &directory, qsizetype next = 0)
    {
        qsizetype valueAt = at + tableSize(directory);
        QByteArray table = number16(static_cast<uint16_t>(directory.size()));
        for (auto entry = directory.begin(); entry != directory.end(); ++entry) {
            table += number16(entry.key()) + number16(entry->type) + number32(entry->count);
            if (entry->data.size() <= 4) {
                table += entry->data.leftJustified(4, '\0');
            } else {
                table += number32(valueAt);
                put(valueAt, entry->data);
                valueAt += padded(entry->data.size());
            }
        }
        put(at, table + number32(next));
    }

    /// Writes the child, if it has entries, and a pointer to it into the parent.
    void addChild(Directory &parent, uint16_t pointer, const Directory &child)
    {
        if (child.isEmpty())
            return;
        const qsizetype at = placeFor(sizeOf(child));
        parent.insert(pointer, longEntry(at));
        write(at, child);
    }

    /// Writes the directory of a JPEG thumbnail and returns where it begins.
    qsizetype writeThumbnail(const QByteArray &thumbnail)
    {
        const Entry density{Exiv2::unsignedRational, 1, number32(72) + number32(1)};
        Directory directory{{0x0103, shortEntry(6)}, // old-style JPEG
                            {0x011A, density},
                            {0x011B, density},
                            {0x0128, shortEntry(2)}, // inches
                            {kThumbnailOffset, longEntry(0)},
                            {kThumbnailLength, longEntry(thumbnail.size())}};
        const qsizetype at = placeFor(sizeOf(directory));
        const qsizetype thumbnailAt = placeFor(thumbnail.size());
        directory[kThumbnailOffset] = longEntry(thumbnailAt);
        write(at, directory);
        put(thumbnailAt, thumbnail);
        return at;
    }

    void start(qsizetype mainDirectory) { put(4, number32(mainDirectory)); }

    const QByteArray &bytes() const { return m_bytes; }

private:
    static qsizetype tableSize(const Directory &directory) { return 2 + kEntryBytes * directory.size() + 4; }

    std::optional<Entry> entryOf(const Exiv2::Exifdatum &datum) const
    {
        // The library's own types of comments and such are bytes to TIFF.
        Exiv2::TypeId type = datum.typeId();
        if (type > Exiv2::tiffIfd)
            type = Exiv2::undefined;
        if (type < Exiv2::unsignedByte || datum.size() < 0 || datum.count() < 0)
            return {};
        Exiv2::DataBuf buffer(std::max<long>(1, datum.size()));
        const long size = datum.copy(buffer.pData_, m_order);
        if (size < 0 || size > buffer.size_)
            return {};
        const long count = type == Exiv2::undefined ? size : datum.count();
        return Entry{static_cast<uint16_t>(type), static_cast<uint32_t>(count),
                     QByteArray(reinterpret_cast<const char *>(buffer.pData_), size)};
    }

    Exiv2::ByteOrder m_order;
    qsizetype m_gapStart;
    QByteArray m_bytes;
    qsizetype m_before = kHeaderBytes;
    qsizetype m_after;
};

} // namespace

QByteArray writtenExif(const Exiv2::ExifData &exif, Exiv2::ByteOrder order, const MakerNoteBlock &makerNote,
                       const QByteArray &thumbnail)
{
    const bool hasPlace = makerNote.offset >= 0 && !makerNote.bytes.isEmpty();
    if (hasPlace &&
        (makerNote.offset < kHeaderBytes || makerNote.offset + makerNote.bytes.size() > kMaxOffset))
        return {};
    Writer writer(order, hasPlace ? makerNote.offset : 0,
                  hasPlace ? makerNote.offset + makerNote.bytes.size() : kHeaderBytes);
    Directory main = writer.directoryOf(exif, "Image");
    Directory photo = writer.directoryOf(exif, "Photo");
    const Directory gps = writer.directoryOf(exif, "GPSInfo");
    const Directory interoperability = writer.directoryOf(exif, "Iop");
    if (!makerNote.bytes.isEmpty())
        photo.insert(kMakerNote, {Exiv2::undefined, static_cast<uint32_t>(makerNote.bytes.size()),
                                  hasPlace ? writer.number32(makerNote.offset) : makerNote.bytes});
    if (hasPlace)
        writer.put(makerNote.offset, makerNote.bytes);

    // The main directory comes first, so its place has to be known before those of the others.
    const int pointers = (photo.isEmpty() && interoperability.isEmpty() ? 0 : 1) + (gps.isEmpty() ? 0 : 1);
    const qsizetype mainAt = writer.placeFor(Writer::sizeOf(main) + pointers * kEntryBytes);
    writer.addChild(photo, kInteroperabilityPointer, interoperability);
    writer.addChild(main, kExifPointer, photo);
    writer.addChild(main, kGpsPointer, gps);
    writer.write(mainAt, main, thumbnail.isEmpty() ? 0 : writer.writeThumbnail(thumbnail));
    writer.start(mainAt);
    return writer.bytes();
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/container/heifitems.h"

#include "imageio/base/picturefailures.h"

#include <QSet>
#include <QtEndian>

#include <algorithm>
#include <vector>

namespace plexa
{

namespace
{

// Real files have one box of metadata with some kilobytes, and at most a few hundred items.
constexpr qint64 kMaxMetaBytes = 32'000'000;
constexpr int kMaxTopLevelBoxes = 1000;
constexpr qsizetype kMaxItems = 10'000;
constexpr qsizetype kMaxExtents = 100'000; // of all items; one may take no bytes in the box
constexpr qsizetype kMaxLinks = 200'000;   // between items, and from items to their properties
constexpr qsizetype kMaxTurns = 16;        // of an item; there are three kinds

/// Reads numbers from a box; zeros after its end, where isWhole becomes false.
class BoxReader
{
public:
    explicit BoxReader(QByteArrayView bytes)
        : m_bytes(bytes)
    {
    }

    /// @param count  0 to 8 bytes
    quint64 number(int count)
    {
        quint64 value = 0;
        for (const char byte : take(count))
            value = value << 8 | uchar(byte);
        return value;
    }

    quint32 word() { return quint32(number(4)); }
    QByteArray letters() { return take(4).toByteArray(); }

    QByteArrayView take(qsizetype count)
    {
        if (count < 0 || count > m_bytes.size()) {
            isWhole = false;
            m_bytes = {};
            return {};
        }
        const QByteArrayView taken = m_bytes.first(count);
        m_bytes = m_bytes.sliced(count);
        return taken;
    }

    /// A text that ends with a zero, or with the box.
    QByteArray text()
    {
        const qsizetype end = m_bytes.indexOf('\0');
        const QByteArray bytes = take(end < 0 ? m_bytes.size() : end).toByteArray();
        take(qMin<qsizetype>(1, m_bytes.size()));
        return bytes;
    }

    QByteArrayView rest() const { return m_bytes; }
    bool atEnd() const { return m_bytes.isEmpty(); }

    bool isWhole = true;

private:
    QByteArrayView m_bytes;
};

struct Box {
    QByteArray type;
    QByteArrayView payload;
};

/// Items may share a property.
struct Property {
    Box box;
    QByteArray contents; ///< as items keep it: one copy for all

    explicit Property(const Box &of)
        : box(of)
    {
        if (box.type == "hvcC" || box.type == "av1C")
            contents = box.payload.toByteArray();
        else if (box.type == "auxC" && box.payload.size() > 4)
            contents = box.payload.sliced(4).toByteArray(); // after version and flags
    }
};

/// The next box inside a box. @return an empty type if it does not fit
Box nextBox(BoxReader &reader)
{
    quint64 size = reader.word();
    Box box{reader.letters(), {}};
    quint64 header = 8;
    if (size == 1) {
        size = reader.number(8);
        header = 16;
    } else if (size == 0) {
        size = quint64(reader.rest().size()) + header;
    }
    if (size < header || size - header > quint64(reader.rest().size()))
        reader.isWhole = false;
    if (!reader.isWhole)
        return {};
    box.payload = reader.take(qsizetype(size - header));
    return box;
}

/// The version and flags at the start of many boxes.
struct FullBox {
    int version;
    quint32 flags;

    explicit FullBox(BoxReader &reader)
        : version(int(reader.number(1)))
        , flags(quint32(reader.number(3)))
    {
    }
};

class MetaParser
{
public:
    /// @param payload  of the "meta" box
    bool parse(QByteArrayView payload)
    {
        BoxReader reader(payload);
        const FullBox head(reader);
        QList<Box> later;
        while (reader.isWhole && !reader.atEnd()) {
            const Box box = nextBox(reader);
            bool isSound = true;
            if (box.type == "pitm")
                isSound = parsePrimary(box.payload);
            else if (box.type == "iinf")
                isSound = parseInfos(box.payload);
            else if (box.type == "idat")
                result.dataBox = box.payload.toByteArray();
            else if (box.type == "iloc" || box.type == "iprp" || box.type == "iref")
                later.append(box); // they refer to items of "iinf"
            if (!isSound)
                return false;
        }
        bool isSound = reader.isWhole && !result.items.isEmpty();
        for (const Box &box : later) {
            if (box.type == "iloc")
                isSound = isSound && parseLocations(box.payload);
            else if (box.type == "iprp")
                isSound = isSound && parseProperties(box.payload);
            else
                isSound = isSound && parseReferences(box.payload);
        }
        return isSound && result.items.contains(result.primary);
    }

    HeifItems result;

private:
    HeifItem *find(quint32 id)
    {
        const auto found = result.items.find(id);
        return found == result.items.end() ? nullptr : &*found;
    }

    bool parsePrimary(QByteArrayView payload)
    {
        BoxReader reader(payload);
        const FullBox head(reader);
        result.primary = quint32(reader.number(head.version == 0 ? 2 : 4));
        return reader.isWhole;
    }

    bool parseInfos(QByteArrayView payload)
    {
        BoxReader reader(payload);
        const FullBox head(reader);
        reader.number(head.version == 0 ? 2 : 4);
        while (reader.isWhole && !reader.atEnd()) {
            const Box box = nextBox(reader);
            if (box.type != "infe")
                continue;
            BoxReader entry(box.payload);
            const FullBox entryHead(entry);
            if (entryHead.version < 2)
                continue;
            const auto id = quint32(entry.number(entryHead.version == 2 ? 2 : 4));
            entry.number(2);
            HeifItem item;
            item.type = entry.letters();
            item.isHidden = (entryHead.flags & 1) != 0;
            entry.text(); // its name
            if (item.type == "mime")
                item.contentType = entry.text();
            if (!entry.isWhole || result.items.size() >= kMaxItems)
                return false;
            result.items.insert(id, item);
        }
        return reader.isWhole;
    }

    bool parseLocations(QByteArrayView payload)
    {
        BoxReader reader(payload);
        const FullBox head(reader);
        const auto sizes = quint32(reader.number(2));
        const auto bytesOf = [sizes](int shift) { return int(sizes >> shift & 15); };
        if (head.version > 2 || bytesOf(12) > 8 || bytesOf(8) > 8 || bytesOf(4) > 8)
            return false;
        const int indexBytes = head.version == 0 ? 0 : bytesOf(0);
        if (indexBytes > 8)
            return false;
        quint64 count = reader.number(head.version == 2 ? 4 : 2);
        for (; count > 0 && reader.isWhole; --count) {
            const auto id = quint32(reader.number(head.version == 2 ? 4 : 2));
            const int method = head.version == 0 ? 0 : int(reader.number(2) & 15);
            const quint64 otherFile = reader.number(2);
            const quint64 base = reader.number(bytesOf(4));
            quint64 extents = reader.number(2);
            HeifItem *item = find(id);
            for (; extents > 0 && reader.isWhole; --extents) {
                reader.number(indexBytes);
                const quint64 offset = base + reader.number(bytesOf(12));
                const quint64 length = reader.number(bytesOf(8));
                constexpr quint64 kMax = quint64(1) << 61;
                if (offset > kMax || length > kMax || ++m_extents > kMaxExtents)
                    return false;
                if (!item)
                    continue;
                const qint64 start = item->extents.isEmpty()
                                         ? 0
                                         : item->extents.constLast().start + item->extents.constLast().length;
                if (quint64(start) > kMax)
                    return false;
                item->extents.append({qint64(offset), qint64(length), start});
            }
            if (item) {
                item->isInDataBox = method == 1;
                item->isElsewhere = method > 1 || otherFile != 0;
            }
        }
        return reader.isWhole;
    }

    static void applyProperty(HeifItem &item, const Property &property)
    {
        const QByteArray &type = property.box.type;
        BoxReader reader(property.box.payload);
        if (type == "ispe") {
            const FullBox head(reader);
            const quint32 width = reader.word();
            const quint32 height = reader.word();
            constexpr quint32 kMax = 0x7fffffff;
            item.size = QSize(int(qMin(width, kMax)), int(qMin(height, kMax)));
        } else if (type == "hvcC" || type == "av1C") {
            item.configuration = property.contents;
        } else if (type == "irot" || type == "imir" || type == "clap") {
            const std::optional<HeifTurn> turn = HeifTurn::fromBox(type, property.box.payload);
            item.hasValidTurns = item.hasValidTurns && turn && item.turns.size() < kMaxTurns;
            if (item.hasValidTurns)
                item.turns.append(*turn);
        } else if (type == "auxC") {
            item.auxiliaryType = property.contents;
        }
    }

    bool parseProperties(QByteArrayView payload)
    {
        BoxReader reader(payload);
        std::vector<Property> properties;
        QList<QByteArrayView> associations;
        while (reader.isWhole && !reader.atEnd()) {
            const Box box = nextBox(reader);
            if (box.type == "ipma")
                associations.append(box.payload);
            if (box.type != "ipco")
                continue;
            BoxReader list(box.payload);
            while (list.isWhole && !list.atEnd() && properties.size() < size_t(kMaxItems))
                properties.emplace_back(nextBox(list));
            if (!list.isWhole || !list.atEnd())
                return false;
        }
        bool isSound = reader.isWhole;
        for (const QByteArrayView association : associations)
            isSound = isSound && parseAssociations(association, properties);
        return isSound;
    }

    bool parseAssociations(QByteArrayView payload, const std::vector<Property> &properties)
    {
        BoxReader reader(payload);
        const FullBox head(reader);
        const bool isWide = (head.flags & 1) != 0;
        for (quint32 count = reader.word(); count > 0 && reader.isWhole; --count) {
            HeifItem *item = find(quint32(reader.number(head.version == 0 ? 2 : 4)));
            for (auto links = int(reader.number(1)); links > 0 && reader.isWhole; --links) {
                const quint64 index = reader.number(isWide ? 2 : 1) & (isWide ? 0x7fff : 0x7f);
                if (++m_links > kMaxLinks)
                    return false;
                if (item && index > 0 && index <= properties.size())
                    applyProperty(*item, properties[index - 1]);
            }
        }
        return reader.isWhole;
    }

    bool parseReferences(QByteArrayView payload)
    {
        BoxReader reader(payload);
        const FullBox head(reader);
        const int idBytes = head.version == 0 ? 2 : 4;
        while (reader.isWhole && !reader.atEnd()) {
            const Box box = nextBox(reader);
            BoxReader list(box.payload);
            const auto from = quint32(list.number(idBytes));
            for (quint64 count = list.number(2); count > 0 && list.isWhole; --count) {
                const auto to = quint32(list.number(idBytes));
                if (++m_links > kMaxLinks)
                    return false;
                if (HeifItem *derived = box.type == "dimg" ? find(from) : nullptr)
                    derived->parts.append(to);
                if (HeifItem *master = box.type == "auxl" ? find(to) : nullptr)
                    master->auxiliaries.append(from);
                if (HeifItem *master = box.type == "thmb" ? find(to) : nullptr)
                    master->thumbnails.append(from);
                if (HeifItem *description = box.type == "cdsc" ? find(from) : nullptr)
                    description->described.append(to);
            }
            if (!list.isWhole)
                return false;
        }
        return reader.isWhole;
    }

    qsizetype m_extents = 0;
    qsizetype m_links = 0;
};

struct FileBoxes {
    QByteArray meta; ///< payload of the first box of metadata
    bool hasFilm = false;
};

/// Boxes after the metadata may be damaged.
Result<FileBoxes> readFileBoxes(QIODevice &device)
{
    const qint64 end = device.size();
    FileBoxes boxes;
    bool hasMeta = false;
    qint64 at = 0;
    for (int i = 0; i < kMaxTopLevelBoxes && at + 8 <= end; ++i) {
        if (!device.seek(at))
            return fail(PictureFailures::readError(device));
        const QByteArray head = device.read(16);
        if (head.size() < 8)
            break;
        qint64 size = qFromBigEndian<quint32>(head.constData());
        qint64 headerBytes = 8;
        if (size == 1 && head.size() == 16) {
            size = qint64(qMin(qFromBigEndian<quint64>(head.constData() + 8), quint64(1) << 62));
            headerBytes = 16;
        } else if (size == 0) {
            size = end - at;
        }
        const QByteArray type = head.mid(4, 4);
        boxes.hasFilm = boxes.hasFilm || type == "moov";
        if (hasMeta && (size < headerBytes || type == "meta"))
            break;
        if (size < headerBytes)
            return fail(PictureFailures::damaged());
        if (type == "meta") {
            if (size > end - at)
                return fail(PictureFailures::truncated());
            if (size > kMaxMetaBytes || !device.seek(at + headerBytes))
                return fail(PictureFailures::damaged());
            boxes.meta = device.read(size - headerBytes);
            if (boxes.meta.size() != size - headerBytes)
                return fail(PictureFailures::readError(device));
            hasMeta = true;
        }
        at += size;
    }
    if (hasMeta)
        return boxes;
    return fail(at >= end ? PictureFailures::truncated() : PictureFailures::damaged());
}

} // namespace

Result<HeifItems> HeifItems::read(QIODevice &device)
{
    const Result<FileBoxes> boxes = readFileBoxes(device);
    if (!boxes)
        return tl::unexpected(boxes.error());
    MetaParser parser;
    if (!parser.parse(boxes->meta))
        return fail(PictureFailures::damaged());
    parser.result.hasSequence = boxes->hasFilm;
    return std::move(parser.result);
}

QByteArray HeifItems::bytes(QIODevice &device, const HeifItem &item, qint64 offset, qint64 count) const
{
    QByteArray result;
    // The first extent that ends after the offset: an item may have many of them and many reads.
    const auto first = std::partition_point(
        item.extents.begin(), item.extents.end(),
        [offset](const HeifItem::Extent &extent) { return extent.start + extent.length <= offset; });
    if (first != item.extents.end())
        offset -= first->start;
    for (auto extent = first; extent != item.extents.end(); ++extent) {
        const qint64 wanted = qMin(count - result.size(), extent->length - offset);
        const qint64 at = extent->offset + offset;
        if (item.isInDataBox)
            result += dataBox.mid(qsizetype(qMin(at, qint64(dataBox.size()))), qsizetype(wanted));
        else if (at < device.size() && device.seek(at))
            result += device.read(wanted);
        offset = 0;
        if (result.size() >= count)
            break;
    }
    return result;
}

const HeifItem *HeifItems::metadata(const char *type, const char *contentType) const
{
    const HeifItem *first = nullptr;
    quint32 firstId = 0;
    for (auto item = items.begin(); item != items.end(); ++item) {
        const bool isWanted = item->type == type && (!contentType || item->contentType == contentType) &&
                              (item->described.isEmpty() || item->described.contains(primary));
        if (isWanted && (!first || item.key() < firstId)) {
            first = &*item;
            firstId = item.key();
        }
    }
    return first;
}

QStringList HeifItems::furtherPictures() const
{
    QStringList names;
    const auto add = [&names](const QString &name) {
        if (!names.contains(name))
            names.append(name);
    };
    QSet<quint32> belonging = {primary};
    for (const HeifItem &item : items) {
        for (const QList<quint32> &others : {item.parts, item.auxiliaries, item.thumbnails})
            belonging.unite(QSet<quint32>(others.begin(), others.end()));
    }
    static const QList<QByteArray> pictureTypes = {"hvc1", "av01", "jpeg", "grid", "iovl", "iden"};
    for (auto item = items.begin(); item != items.end(); ++item) {
        const QByteArray auxiliary = item->auxiliaryType.toLower();
        if (item->type == "tmap" || auxiliary.contains("gainmap"))
            add(QStringLiteral("gain map"));
        else if (auxiliary.contains("depth") || auxiliary.contains("disparity") ||
                 auxiliary.startsWith("urn:mpeg:hevc:2015:auxid:2"))
            add(QStringLiteral("depth map"));
        else if (pictureTypes.contains(item->type) && !item->isHidden && auxiliary.isEmpty() &&
                 !belonging.contains(item.key()))
            add(QStringLiteral("further pictures"));
        if (!item->thumbnails.isEmpty())
            add(QStringLiteral("preview"));
    }
    if (hasSequence)
        add(QStringLiteral("animation"));
    names.sort();
    return names;
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/exif/makernoterewriting.h"

#include "imageio/container/picturestarts.h"
#include "imageio/container/tiffdirectory.h"
#include "imageio/embedded/exif/exifvalues.h"
#include "imageio/embedded/metadatablocks.h"
#include "imageio/embedded/metadataclearing.h"

#include <QSet>

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

using namespace Qt::Literals;

namespace plexa
{

namespace
{

constexpr qsizetype kEntryBytes = 12;

/// Nikon encrypts by the camera's serial number and the count of its shutter, where the camera records them.
bool lacksKey(const MakerNoteBlock &note, const Exiv2::ExifData &exif)
{
    constexpr const char *kKeys[] = {"Exif.Nikon3.SerialNumber", "Exif.Nikon3.ShutterCount"};
    return std::ranges::any_of(
        kKeys, [&](const char *key) { return exifDatum(note.fields, key) && !exifDatum(exif, key); });
}

/// Where a note has its directory and what its offsets count from; both in bytes from the note's start.
struct NoteLayout {
    qsizetype directory = 0;
    qsizetype base = 0;
    TiffOrder order = TiffOrder::LittleEndian;
    bool hasOwnBase = false; ///< the note can lie anywhere
};

struct NoteHeader {
    QByteArray start;
    qsizetype directory;    ///< without `pointer`: its position
    qsizetype base = -1;    ///< negative: the start of the EXIF data
    qsizetype pointer = -1; ///< the position of the directory's offset
};

NoteLayout layoutOf(const MakerNoteBlock &note, Exiv2::ByteOrder order)
{
    static const NoteHeader headers[] = {
        {"OLYMPUS\0II"_ba, 12, 0}, {"OLYMPUS\0MM"_ba, 12, 0},   {"OM SYSTEM"_ba, 16, 0},
        {"FUJIFILM"_ba, 0, 0, 8},  {"Nikon\0\2"_ba, 0, 10, 14}, {"PENTAX "_ba, 10, 0},
        {"Apple iOS"_ba, 14, 0},   {"OLYMP\0"_ba, 8},           {"EPSON\0"_ba, 8},
        {"CAMER\0"_ba, 8},         {"Nikon\0"_ba, 8},           {"AOC\0"_ba, 6},
        {"QVC\0"_ba, 6},           {"Panasonic\0"_ba, 12},      {"SONY "_ba, 12},
        {"SIGMA\0"_ba, 10},        {"FOVEON\0"_ba, 10},
    };
    // Some makers' notes have a byte order of their own.
    const Exiv2::Exifdatum *own = exifDatum(note.fields, "Exif.MakerNote.ByteOrder");
    const bool isBig =
        own && own->count() > 0 ? own->toString().starts_with("MM") : order == Exiv2::bigEndian;
    NoteLayout layout{0, -note.offset, isBig ? TiffOrder::BigEndian : TiffOrder::LittleEndian};
    const auto header = std::ranges::find_if(
        headers, [&note](const NoteHeader &candidate) { return note.bytes.startsWith(candidate.start); });
    if (header == std::end(headers))
        return layout;
    layout.hasOwnBase = header->base >= 0;
    if (layout.hasOwnBase)
        layout.base = header->base;
    layout.directory = header->directory;
    if (header->pointer >= 0 && header->pointer + 4 <= note.bytes.size())
        layout.directory =
            layout.base + tiffNumberAt(note.bytes.constData() + header->pointer, 4, layout.order);
    return layout;
}

/// Do all values outside of the directory lie in the note, the first of them close after the directory, as
/// cameras write them?
bool offsetsHold(const MakerNoteBlock &note, const NoteLayout &layout)
{
    const char *data = note.bytes.constData();
    const qsizetype start = layout.directory;
    if (start + 2 > note.bytes.size())
        return false;
    const qsizetype count = tiffNumberAt(data + start, 2, layout.order);
    const qsizetype end = start + 2 + count * kEntryBytes;
    if (count == 0 || end > note.bytes.size())
        return false;
    qsizetype first = note.bytes.size();
    for (qsizetype at = start + 2; at < end; at += kEntryBytes) {
        const auto type = static_cast<Exiv2::TypeId>(tiffNumberAt(data + at + 2, 2, layout.order));
        const qint64 size =
            qint64(tiffNumberAt(data + at + 4, 4, layout.order)) * Exiv2::TypeInfo::typeSize(type);
        if (size <= 4)
            continue;
        const qint64 place = layout.base + qint64(tiffNumberAt(data + at + 8, 4, layout.order));
        if (place < end || place + size > note.bytes.size())
            return false;
        first = std::min<qsizetype>(first, place);
    }
    // After the directory there may be the offset of the next one, and some bytes to align the values.
    constexpr qsizetype kMaxGap = 16;
    return first == note.bytes.size() || first - end <= kMaxGap;
}

QString tagText(uint16_t tag)
{
    return QStringLiteral("0x%1").arg(tag, 4, 16, QChar(u'0'));
}

/// The tags of a maker note as its bytes show them, those included that the library does not know: "0x0001",
/// and "0x2010/0x0100" in a directory to which 0x2010 points.
class NoteTags
{
public:
    NoteTags(const MakerNoteBlock &note, Exiv2::ByteOrder order)
        : m_bytes(note.bytes)
        , m_layout(layoutOf(note, order))
    {
        const auto fields = fieldsAt(m_layout.directory);
        if (!fields)
            return;
        m_ranges.emplace_back(0, m_layout.directory);
        read(m_layout.directory, *fields, {});
    }

    const QSet<QString> &tags() const { return m_tags; }

    /// Are there data that belong to no field, more than fill bytes and the end marks of some makers?
    bool hasDataOutsideOfFields() const
    {
        constexpr qsizetype kMaxFill = 16;
        std::vector<std::pair<qint64, qint64>> ranges = m_ranges;
        ranges.emplace_back(m_bytes.size(), m_bytes.size());
        std::ranges::sort(ranges);
        QByteArray rest;
        qint64 end = 0;
        for (const auto &[from, to] : ranges) {
            if (from > end)
                rest += m_bytes.mid(end, from - end);
            end = std::max(end, to);
        }
        // A preview, and what its buffer held before.
        if (const qsizetype picture = pictureStartIn(rest); picture >= 0)
            rest.truncate(picture);
        return rest.size() - rest.count('\0') > kMaxFill;
    }

private:
    qsizetype fieldCountAt(qint64 position) const
    {
        return tiffNumberAt(m_bytes.constData() + position, 2, m_layout.order);
    }

    std::optional<TiffFields> fieldsAt(qint64 position) const
    {
        constexpr qsizetype kMaxFields = 500; // of real directories
        if (position < 0 || position + 2 > m_bytes.size() || fieldCountAt(position) > kMaxFields)
            return {};
        return readTiffFields(m_bytes, quint32(position), m_layout.order);
    }

    void read(qint64 at, const TiffFields &fields, const QString &path)
    {
        // Of fields with the same tag only the first is among them.
        m_ranges.emplace_back(at, at + tiffDirectoryBytes(fieldCountAt(at)));
        constexpr qsizetype kMaxTags = 2000;
        for (auto field = fields.begin(); field != fields.end() && m_tags.size() < kMaxTags; ++field) {
            const QString tag = path + tagText(field.key());
            m_tags += tag;
            const qint64 position = m_layout.base + qint64(field->offset(m_layout.order));
            if (field->valueBytes() > 4)
                m_ranges.emplace_back(position, position + qint64(field->valueBytes()));
            if (const auto inner = directoryOf(*field); inner && path.count(u'/') < 3)
                read(position, *inner, tag + u'/');
        }
    }

    /// The directory to which a field points; none where it does not look like a pointer.
    std::optional<TiffFields> directoryOf(const TiffField &field) const
    {
        constexpr quint16 kLong = 4, kUndefined = 7, kIfd = 13;
        const bool mayPoint = field.type == kIfd || (field.type == kLong && field.count == 1) ||
                              (field.type == kUndefined && field.count > 4);
        const qint64 position = m_layout.base + qint64(field.offset(m_layout.order));
        if (!mayPoint || position <= m_layout.directory)
            return {};
        const auto fields = fieldsAt(position);
        const bool isDirectory =
            fields && !fields->isEmpty() &&
            std::ranges::all_of(*fields, [this](const TiffField &inner) { return isWhole(inner); });
        return isDirectory ? fields : std::nullopt;
    }

    bool isWhole(const TiffField &field) const
    {
        const quint64 bytes = field.valueBytes();
        const qint64 position = m_layout.base + qint64(field.offset(m_layout.order));
        return bytes > 0 && (bytes <= 4 || (position >= 0 && bytes <= quint64(m_bytes.size()) &&
                                            position <= m_bytes.size() - qint64(bytes)));
    }

    const QByteArray m_bytes;
    const NoteLayout m_layout;
    std::vector<std::pair<qint64, qint64>> m_ranges; ///< of the bytes of fields and directories
    QSet<QString> m_tags;
};

/// A group of the library's and a tag in it. Groups use the same tags, those of directories as well as those
/// that the library gives to the parts of a value.
using GroupTag = std::pair<std::string, QString>;

/// Finds the library's group of each directory of a note: of the groups with the fewest tags outside of the
/// directory, the one with the most in it.
class DirectoryGroups
{
public:
    /// @param paths  as of NoteTags
    DirectoryGroups(const QSet<QString> &paths, const Exiv2::ExifData &fields)
    {
        std::map<std::string, QSet<QString>> tagsOfGroups;
        for (const Exiv2::Exifdatum &datum : fields) {
            if (datum.groupName() != "MakerNote")
                tagsOfGroups[datum.groupName()] += tagText(datum.tag());
        }
        std::map<QString, QSet<QString>> tagsOfDirectories;
        for (const QString &path : paths)
            tagsOfDirectories[directoryOf(path)] += path.section(u'/', -1);
        for (const auto &[directory, tags] : tagsOfDirectories) {
            std::pair<qsizetype, qsizetype> best; // tags outside of the directory; minus those in it
            for (const auto &[group, tagsOfGroup] : tagsOfGroups) {
                const qsizetype inside = (tagsOfGroup & tags).size();
                const std::pair match(tagsOfGroup.size() - inside, -inside);
                if (inside > 0 && (!m_groups.contains(directory) || match < best)) {
                    best = match;
                    m_groups[directory] = group;
                }
            }
        }
    }

    /// The fields that lead to a field, and itself; without group where the library does not know the
    /// directory.
    std::vector<GroupTag> pathOf(const QString &path) const
    {
        std::vector<GroupTag> fields;
        for (QString at = path; !at.isEmpty(); at = directoryOf(at)) {
            const auto group = m_groups.find(directoryOf(at));
            fields.emplace_back(group == m_groups.end() ? std::string() : group->second,
                                at.section(u'/', -1));
        }
        return fields;
    }

private:
    static QString directoryOf(const QString &path) { return path.section(u'/', 0, -2); }

    std::map<QString, std::string> m_groups;
};

/// The fields of the maker notes that a file stores, with their values.
std::map<std::string, std::string> storedNoteFields(const Exiv2::ExifData &exif)
{
    std::map<std::string, std::string> fields;
    for (const Exiv2::Exifdatum &datum : exif) {
        const std::string group = datum.groupName();
        if (isMakerNoteGroup(group) && group != "MakerNote" && datum.size() > 0 &&
            Exiv2::TypeInfo::typeSize(datum.typeId()) > 0)
            fields[datum.key()] += datum.toString() + '\n';
    }
    return fields;
}

} // namespace

bool holdsMakerNote(const QByteArray &encoded, const Exiv2::ExifData &exif)
{
    Exiv2::ExifData found;
    Exiv2::ExifParser::decode(found, reinterpret_cast<const Exiv2::byte *>(encoded.constData()),
                              static_cast<uint32_t>(encoded.size()));
    const std::map<std::string, std::string> fields = storedNoteFields(found);
    const std::map<std::string, std::string> meant = storedNoteFields(exif);
    // A number that was removed from a block leaves a zero there, so that more fields may be found.
    return std::includes(fields.begin(), fields.end(), meant.begin(), meant.end());
}

bool canRewriteMakerNote(const Exiv2::ExifData &exif, const MakerNoteBlock &note, Exiv2::ByteOrder order)
{
    if (lacksKey(note, exif))
        return false;
    const NoteLayout layout = layoutOf(note, order);
    return layout.hasOwnBase || (note.offset >= 0 && offsetsHold(note, layout));
}

QStringList lossesByRewriting(const MakerNoteBlock &note, const Exiv2::ExifData &exif,
                              const QByteArray &encoded)
{
    Exiv2::ExifData found;
    const Exiv2::ByteOrder order =
        Exiv2::ExifParser::decode(found, reinterpret_cast<const Exiv2::byte *>(encoded.constData()),
                                  static_cast<uint32_t>(encoded.size()));
    const NoteTags after(makerNoteOf(found), order);
    const NoteTags before(note, order);
    std::set<std::string> kept;
    for (const Exiv2::Exifdatum &datum : exif)
        kept.insert(datum.key());
    std::map<GroupTag, QString> names;
    std::set<GroupTag> removed;
    for (const Exiv2::Exifdatum &datum : note.fields) {
        const GroupTag tag(datum.groupName(), tagText(datum.tag()));
        names.emplace(tag, QString::fromStdString(datum.tagName()));
        if (!kept.contains(datum.key()))
            removed.insert(tag);
    }
    const DirectoryGroups groups(before.tags(), note.fields);
    QStringList lost;
    const QSet<QString> missing = before.tags() - after.tags();
    for (const QString &tag : missing) {
        const std::vector<GroupTag> path = groups.pathOf(tag);
        if (std::ranges::any_of(path, [&](const GroupTag &part) { return removed.contains(part); }))
            continue;
        const auto name = path.size() == 1 ? names.find(path.front()) : names.end();
        lost += QStringLiteral("maker note field ") + (name == names.end() ? tag : name->second);
    }
    lost.sort();
    if (before.hasDataOutsideOfFields() && !after.hasDataOutsideOfFields())
        lost += QStringLiteral("maker note data outside of its fields");
    return lost;
}

MakerNoteBlock makerNoteOf(const Exiv2::ExifData &exif)
{
    MakerNoteBlock block;
    if (const Exiv2::Exifdatum *note = exifDatum(exif, "Exif.Photo.MakerNote"))
        block.bytes = bytesOfValue(note->value(), kMaxMetadataBytes);
    const Exiv2::Exifdatum *offset = exifDatum(exif, "Exif.MakerNote.Offset");
    if (!block.bytes.isEmpty() && offset && offset->count() > 0)
        block.offset = offset->toLong();
    for (const Exiv2::Exifdatum &datum : exif) {
        if (isMakerNoteGroup(datum.groupName()))
            block.fields.add(datum);
    }
    return block;
}

} // namespace plexa

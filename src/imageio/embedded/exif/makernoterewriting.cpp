// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/exif/makernoterewriting.h"

#include "imageio/embedded/exif/exifvalues.h"
#include "imageio/embedded/metadataclearing.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string>

using namespace Qt::Literals;

namespace plexa
{

namespace
{

constexpr qsizetype kEntryBytes = 12;

/// Nikon encrypts by the camera's serial number and the count of its shutter.
bool hasNikonKeys(const Exiv2::ExifData &exif)
{
    return !hasExifGroup(exif, "Nikon3") ||
           (exifDatum(exif, "Exif.Nikon3.SerialNumber") && exifDatum(exif, "Exif.Nikon3.ShutterCount"));
}

/// Where the note's directory begins, for notes whose offsets count from the start of the EXIF data. None
/// for those that count from within the note: they can lie anywhere.
std::optional<qsizetype> directoryStart(const QByteArray &note)
{
    if (note.startsWith("OLYMPUS\0II"_ba) || note.startsWith("OLYMPUS\0MM"_ba) ||
        note.startsWith("OM SYSTEM") || note.startsWith("FUJIFILM") || note.startsWith("Nikon\0\2"_ba) ||
        note.startsWith("PENTAX ") || note.startsWith("Apple iOS"))
        return {};
    struct Header {
        QByteArray start;
        qsizetype bytes;
    };
    static const Header headers[] = {
        {"OLYMP\0"_ba, 8}, {"EPSON\0"_ba, 8},      {"CAMER\0"_ba, 8}, {"Nikon\0"_ba, 8},  {"AOC\0"_ba, 6},
        {"QVC\0"_ba, 6},   {"Panasonic\0"_ba, 12}, {"SONY "_ba, 12},  {"SIGMA\0"_ba, 10}, {"FOVEON\0"_ba, 10},
    };
    for (const Header &header : headers) {
        if (note.startsWith(header.start))
            return header.bytes;
    }
    return 0;
}

/// Do all values outside of the directory lie in the note, the first of them close after the directory, as
/// cameras write them?
bool offsetsHold(const MakerNoteBlock &note, qsizetype start, Exiv2::ByteOrder order)
{
    const QByteArray &bytes = note.bytes;
    const auto data = [&bytes](qsizetype at) {
        return reinterpret_cast<const Exiv2::byte *>(bytes.constData()) + at;
    };
    if (start + 2 > bytes.size())
        return false;
    const qsizetype count = Exiv2::getUShort(data(start), order);
    const qsizetype end = start + 2 + count * kEntryBytes;
    if (count == 0 || end > bytes.size())
        return false;
    qsizetype first = bytes.size();
    for (qsizetype at = start + 2; at < end; at += kEntryBytes) {
        const auto type = static_cast<Exiv2::TypeId>(Exiv2::getUShort(data(at + 2), order));
        const qint64 size = qint64(Exiv2::getULong(data(at + 4), order)) * Exiv2::TypeInfo::typeSize(type);
        if (size <= 4)
            continue;
        const qint64 place = qint64(Exiv2::getULong(data(at + 8), order)) - note.offset;
        if (place < end || place + size > bytes.size())
            return false;
        first = std::min<qsizetype>(first, place);
    }
    // After the directory there may be the offset of the next one, and some bytes to align the values.
    constexpr qsizetype kMaxGap = 16;
    return first == bytes.size() || first - end <= kMaxGap;
}

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
    if (!hasNikonKeys(exif))
        return false;
    const std::optional<qsizetype> start = directoryStart(note.bytes);
    if (!start)
        return true;
    if (note.offset < 0)
        return false;
    // Some makers' notes have a byte order of their own.
    const Exiv2::Exifdatum *own = exifDatum(exif, "Exif.MakerNote.ByteOrder");
    if (own && own->count() > 0)
        order = own->toString().starts_with("MM") ? Exiv2::bigEndian : Exiv2::littleEndian;
    return offsetsHold(note, *start, order);
}

} // namespace plexa

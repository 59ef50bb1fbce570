// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/exif/exifencoding.h"

#include "imageio/container/picturestarts.h"
#include "imageio/embedded/exif/exifvalues.h"
#include "imageio/embedded/exif/makernoterewriting.h"
#include "imageio/embedded/metadataclearing.h"
#include "metadata/metadatafields.h"

#include <QRandomGenerator>

#include <algorithm>
#include <set>
#include <vector>

namespace plexa
{

namespace
{

/// Bytes that occur nowhere else: letters, so that no picture can seem to begin in them.
QByteArray newPlaceholder(qsizetype bytes)
{
    QByteArray placeholder(bytes, '\0');
    for (char &byte : placeholder)
        byte = static_cast<char>('A' + QRandomGenerator::global()->bounded(26));
    return placeholder;
}

QByteArray encodedByLibrary(Exiv2::ExifData exif, Exiv2::ByteOrder order, const QByteArray &thumbnail)
{
    eraseMetadataIf(exif, [](const Exiv2::Exifdatum &datum) {
        return Exiv2::TypeInfo::typeSize(datum.typeId()) == 0 || datum.size() == 0;
    });
    if (!thumbnail.isEmpty())
        Exiv2::ExifThumb(exif).setJpegThumbnail(reinterpret_cast<const Exiv2::byte *>(thumbnail.constData()),
                                                static_cast<long>(thumbnail.size()), {72, 1}, {72, 1}, 2);
    Exiv2::Blob blob;
    Exiv2::ExifParser::encode(blob, order, exif);
    return QByteArray(reinterpret_cast<const char *>(blob.data()), static_cast<qsizetype>(blob.size()));
}

/// The ways to treat the maker note, from the one that keeps most to the one that keeps least.
enum class NoteWay {
    AsItWas,
    Again, ///< from the fields that the library has decoded
    None,
};

class ExifEncoder
{
public:
    ExifEncoder(Exiv2::ExifData exif, Exiv2::ByteOrder order, const MakerNoteBlock &note)
        : m_exif(std::move(exif))
        , m_order(order)
        , m_note(note)
    {
    }

    /// @return empty where that way is impossible, or would let a picture through
    QByteArray encoded(NoteWay way, const QByteArray &thumbnail) const
    {
        const QByteArray blob = written(way, thumbnail);
        const bool isValid = !holdsPictureStart(blob) && (thumbnail.isEmpty() || blob.count(thumbnail) == 1);
        return isValid ? blob : QByteArray();
    }

    Exiv2::ExifData &exif() { return m_exif; }

private:
    QByteArray written(NoteWay way, const QByteArray &thumbnail) const
    {
        switch (way) {
        case NoteWay::AsItWas:
            return m_note.bytes.isEmpty() || m_note.isEdited
                       ? QByteArray()
                       : writtenExif(m_exif, m_order, m_note, thumbnail);
        case NoteWay::Again:
            try {
                if (makerNoteFields(m_exif) == 0 || !canRewriteMakerNote(m_exif, m_note, m_order))
                    return {};
                const QByteArray encoded = encodedByLibrary(m_exif, m_order, thumbnail);
                return holdsMakerNote(encoded, m_exif) ? encoded : QByteArray();
            } catch (const std::exception &) {
                return {}; // the next way needs nothing of the maker note
            }
        case NoteWay::None:
            return writtenExif(m_exif, m_order, {}, thumbnail);
        }
        return {};
    }

    Exiv2::ExifData m_exif;
    Exiv2::ByteOrder m_order;
    MakerNoteBlock m_note;
};

constexpr const char *kUserComment = "Exif.Photo.UserComment";

/// The values of EXIF in the order in which they are left out.
class ExifShortener
{
public:
    explicit ExifShortener(Exiv2::ExifData &exif)
        : m_exif(exif)
    {
        std::set<std::string> modelled;
        for (const MetadataField &field : metadataFields()) {
            if (field.exif)
                modelled.insert(field.exif);
        }
        modelled.erase(kUserComment);
        for (auto datum = exif.begin(); datum != exif.end(); ++datum) {
            const std::string group = datum->groupName();
            const bool isWritten =
                group == "Image" || group == "Photo" || group == "GPSInfo" || group == "Iop";
            if (!isWritten || datum->key() == "Exif.Photo.MakerNote")
                continue;
            const bool isLarge = datum->size() > kLargeBytes;
            (isLarge && !modelled.contains(datum->key()) ? m_first : m_last).push_back(datum);
        }
        const auto isShorter = [](const Value &a, const Value &b) { return a->size() < b->size(); };
        std::stable_sort(m_first.begin(), m_first.end(), isShorter);
        std::stable_sort(m_last.begin(), m_last.end(), isShorter);
    }

    /// Erases values of at least so many bytes together, or all: one that is just long enough where there is
    /// one, else the longest. @return the erased values
    QStringList shorten(qsizetype bytes)
    {
        QStringList names;
        while (bytes > 0 && !(m_first.empty() && m_last.empty())) {
            std::vector<Value> &values = m_first.empty() ? m_last : m_first;
            auto victim = std::find_if(values.begin(), values.end(),
                                       [bytes](const Value &value) { return value->size() >= bytes; });
            if (victim == values.end())
                --victim;
            bytes -= kEntryBytes + (*victim)->size();
            names += exifFieldName(**victim);
            m_exif.erase(*victim);
            values.erase(victim);
        }
        return names;
    }

private:
    using Value = Exiv2::ExifData::iterator;
    static constexpr long kLargeBytes = 64;
    static constexpr qsizetype kEntryBytes = 12;
    Exiv2::ExifData &m_exif;
    std::vector<Value> m_first; ///< large and unmodelled
    std::vector<Value> m_last;
};

/// Shortens EXIF that is too long even without the maker note.
QByteArray shortened(ExifEncoder &encoder, qsizetype maxBytes, QStringList &omitted)
{
    ExifShortener shortener(encoder.exif());
    for (;;) {
        const QByteArray bytes = encoder.encoded(NoteWay::None, {});
        if (bytes.size() <= maxBytes)
            return bytes;
        const QStringList names = shortener.shorten(bytes.size() - maxBytes);
        if (names.isEmpty())
            return {};
        omitted += names;
    }
}

} // namespace

void encodeExif(EmbeddedMetadata::Encoded &result, Exiv2::ExifData exif, Exiv2::ByteOrder order,
                const MakerNoteBlock &note, const EmbeddedMetadata::CopyFacts &facts)
{
    ExifEncoder encoder(std::move(exif), order, note);
    NoteWay way = NoteWay::None;
    bool isTooLong = false;
    for (const NoteWay candidate : {NoteWay::AsItWas, NoteWay::Again, NoteWay::None}) {
        const QByteArray bytes = encoder.encoded(candidate, {});
        isTooLong = isTooLong || bytes.size() > facts.maxExifBytes;
        if (bytes.isEmpty() || bytes.size() > facts.maxExifBytes)
            continue;
        result.exif = bytes;
        way = candidate;
        break;
    }
    const bool hadNote = !note.bytes.isEmpty() || makerNoteFields(encoder.exif()) > 0;
    if (hadNote && way == NoteWay::None)
        result.omitted += u"maker note"_qs;
    if (way == NoteWay::Again)
        result.omitted += lossesByRewriting(note, encoder.exif(), result.exif);
    if (isTooLong && result.exif.isEmpty())
        result.exif = shortened(encoder, facts.maxExifBytes, result.omitted);
    if (result.exif.isEmpty() && !encoder.exif().empty())
        result.omitted += u"EXIF"_qs;
    if (facts.thumbnailBytes <= 0 || result.exif.isEmpty() ||
        result.exif.size() + facts.thumbnailBytes > facts.maxExifBytes)
        return;
    const QByteArray placeholder = newPlaceholder(facts.thumbnailBytes);
    const QByteArray withThumbnail = encoder.encoded(way, placeholder);
    if (!withThumbnail.isEmpty() && withThumbnail.size() <= facts.maxExifBytes) {
        result.exif = withThumbnail;
        result.thumbnailPlaceholder = placeholder;
    }
}

} // namespace plexa

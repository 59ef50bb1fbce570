// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/pngtexts.h"

#include "imageio/container/picturestarts.h"
#include "imageio/embedded/metadatablocks.h"
#include "metadata/propertykeys.h"
#include "metadata/propertyvalues.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <memory>

namespace plexa
{

namespace
{

constexpr qsizetype kMaxTexts = 200;
constexpr qsizetype kMaxOneTextBytes = 256 * 1024;
constexpr qsizetype kMaxKeywordBytes = 79; // of the PNG standard
constexpr char kSoftwareKeyword[] = "Software";

/// A text whose fact the property dictionary holds, too.
struct SharedFact {
    const char *keyword;
    QLatin1StringView iptcKey;
    QLatin1StringView tiffKey; ///< null: TIFF has none
    bool isList;               ///< in IPTC
};

const std::array kSharedFacts{
    SharedFact{"Author", kCGImagePropertyIPTCByline, kCGImagePropertyTIFFArtist, true},
    SharedFact{"Copyright", kCGImagePropertyIPTCCopyrightNotice, kCGImagePropertyTIFFCopyright, false},
    SharedFact{"Title", kCGImagePropertyIPTCObjectName, {}, false},
    SharedFact{"Description", kCGImagePropertyIPTCCaptionAbstract, kCGImagePropertyTIFFImageDescription,
               false},
};

const SharedFact *sharedFact(const QByteArray &keyword)
{
    const auto fact = std::find_if(kSharedFacts.begin(), kSharedFacts.end(),
                                   [&](const SharedFact &shared) { return keyword == shared.keyword; });
    return fact == kSharedFacts.end() ? nullptr : &*fact;
}

/// Decompresses a zlib stream; empty when it is damaged or larger than `most`.
/// @param budget  bytes that may still be inflated; reduced by all inflated bytes, discarded ones included
QByteArray inflated(const QByteArray &data, qsizetype most, qsizetype &budget)
{
    z_stream stream{};
    if (budget <= 0 || inflateInit(&stream) != Z_OK)
        return {};
    const std::unique_ptr<z_stream, decltype(&inflateEnd)> guard(&stream, inflateEnd);
    stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(data.constData()));
    stream.avail_in = static_cast<uInt>(data.size());
    QByteArray result;
    for (;;) {
        char buffer[16 * 1024];
        stream.next_out = reinterpret_cast<Bytef *>(buffer);
        stream.avail_out = sizeof buffer;
        const int code = inflate(&stream, Z_NO_FLUSH);
        const auto count = static_cast<qsizetype>(sizeof buffer - stream.avail_out);
        budget -= count;
        result.append(buffer, count);
        if (result.size() > most || budget < 0)
            return {};
        if (code == Z_STREAM_END)
            return result;
        if (code != Z_OK)
            return {};
    }
}

bool isProperKeyword(const QByteArray &keyword)
{
    return !keyword.isEmpty() && keyword.size() <= kMaxKeywordBytes && keyword == keyword.simplified() &&
           std::all_of(keyword.begin(), keyword.end(), [](char letter) {
               const auto code = static_cast<uchar>(letter);
               return (code >= 0x20 && code <= 0x7E) || code >= 0xA1;
           });
}

/// Names with a colon are programs' own records of the source file: "date:modify", "exif:GPSLatitude",
/// "Thumb::URI".
bool isToBeCopied(const QByteArray &keyword)
{
    return keyword != kSoftwareKeyword && !keyword.contains(':') && !keyword.toLower().contains("thumb");
}

/// As bytes, in base 64 or in hexadecimal digits.
bool holdsPicture(const QByteArray &bytes)
{
    return holdsPictureStart(bytes) || holdsPictureAsText(bytes);
}

/// Does a clearing reach a text that the property dictionary does not know?
bool isCleared(const QByteArray &keyword, ClearedGroups cleared)
{
    const QByteArray name = keyword.toLower();
    const auto names = [&name](std::initializer_list<const char *> words) {
        return std::any_of(words.begin(), words.end(), [&](const char *word) { return name.contains(word); });
    };
    return (cleared & ClearedGroup::Iptc) || // people's words on the picture
           ((cleared & ClearedGroup::Gps) && names({"gps", "latitude", "longitude", "location"})) ||
           ((cleared & ClearedGroup::Exif) && names({"creation time", "exif", "serial", "lens"})) ||
           ((cleared & ClearedGroup::Tiff) && names({"source", "camera", "make", "model"}));
}

QVariant iptcValue(const QVariantMap &properties, QLatin1StringView key)
{
    return properties.value(kCGImagePropertyIPTCDictionary).toMap().value(key);
}

void insertInto(QVariantMap &properties, QLatin1StringView dictionary, QLatin1StringView key,
                const QVariant &value)
{
    QVariantMap group = properties.value(dictionary).toMap();
    group.insert(key, value);
    properties.insert(dictionary, group);
}

QString textOf(const QVariant &value)
{
    return value.typeId() == QMetaType::QString ? value.toString()
                                                : value.toStringList().join(QLatin1String(", "));
}

} // namespace

bool PngTextChunks::Content::isBlock() const
{
    return keyword.startsWith("Raw profile type ") || keyword == "XML:com.adobe.xmp";
}

std::optional<PngTextChunks::Content> PngTextChunks::unpacked(const QByteArray &type, const QByteArray &data)
{
    qsizetype textAt = data.indexOf('\0') + 1;
    if (textAt <= 0)
        return std::nullopt;
    Content content{data.left(textAt - 1), {}, type == "iTXt"};
    bool isCompressed = type == "zTXt";
    if (isCompressed) {
        ++textAt; // the method
    } else if (content.isUtf8) {
        if (textAt + 2 > data.size())
            return std::nullopt;
        isCompressed = data[textAt] == 1;
        const qsizetype languageEnd = data.indexOf('\0', textAt + 2);
        const qsizetype translatedEnd = languageEnd < 0 ? -1 : data.indexOf('\0', languageEnd + 1);
        if (translatedEnd < 0)
            return std::nullopt;
        textAt = translatedEnd + 1;
    }
    // The name decides before anything is inflated.
    const bool isWanted = content.isBlock() || (isProperKeyword(content.keyword) &&
                                                isToBeCopied(content.keyword) && m_texts.size() < kMaxTexts);
    const qsizetype most = content.isBlock() ? kMaxMetadataBytes : std::min(kMaxOneTextBytes, m_textBytes);
    if (!isWanted || textAt > data.size())
        return std::nullopt;
    content.bytes = data.mid(textAt);
    if (isCompressed)
        content.bytes = inflated(content.bytes, most, m_inflatableBytes);
    if (content.bytes.isEmpty() || content.bytes.size() > most)
        return std::nullopt;
    return content;
}

void PngTextChunks::add(const Content &content)
{
    if (content.bytes.contains('\0') || holdsPicture(content.bytes) || m_texts.size() >= kMaxTexts)
        return;
    if (content.isUtf8 && !content.bytes.isValidUtf8())
        return;
    m_textBytes -= content.bytes.size();
    m_texts.append({content.keyword,
                    content.isUtf8 ? QString::fromUtf8(content.bytes) : QString::fromLatin1(content.bytes)});
}

QVariantMap withPngTexts(QVariantMap properties, const QList<PngText> &texts)
{
    for (const PngText &text : texts) {
        const SharedFact *fact = sharedFact(text.keyword);
        if (!fact || iptcValue(properties, fact->iptcKey).isValid())
            continue;
        const QVariantMap tiff = properties.value(kCGImagePropertyTIFFDictionary).toMap();
        if (!fact->tiffKey.isNull() && tiff.contains(fact->tiffKey))
            continue;
        const QVariant inIptc = fact->isList ? QVariant(QVariantList{text.text}) : QVariant(text.text);
        insertInto(properties, kCGImagePropertyIPTCDictionary, fact->iptcKey, inIptc);
        if (!fact->tiffKey.isNull())
            insertInto(properties, kCGImagePropertyTIFFDictionary, fact->tiffKey, text.text);
    }
    return properties;
}

QVariantMap pngTextProperties(const QList<PngText> &texts)
{
    QVariantMap dictionary;
    for (const PngText &text : texts) {
        const QString key = QString::fromLatin1(text.keyword);
        if (!dictionary.contains(key))
            dictionary.insert(key, text.text);
    }
    return dictionary;
}

QList<PngText> pngTextsForCopy(const QList<PngText> &texts, const QVariantMap &before,
                               const QVariantMap &after, ClearedGroups cleared)
{
    QList<PngText> result;
    for (const PngText &text : texts) {
        const SharedFact *fact = sharedFact(text.keyword);
        if (!fact) {
            if (!isCleared(text.keyword, cleared))
                result.append(text);
            continue;
        }
        const QVariant now = iptcValue(after, fact->iptcKey);
        if (samePropertyValue(iptcValue(before, fact->iptcKey), now))
            result.append(text);
        else if (const QString edited = textOf(now); !edited.isEmpty())
            result.append({text.keyword, edited});
    }
    const QString software =
        after.value(kCGImagePropertyTIFFDictionary).toMap().value(kCGImagePropertyTIFFSoftware).toString();
    if (!software.isEmpty())
        result.append({kSoftwareKeyword, software});
    return result;
}

} // namespace plexa

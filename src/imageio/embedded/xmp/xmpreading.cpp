// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/xmp/xmpreading.h"

#include "imageio/embedded/exif/exifvalues.h"
#include "imageio/embedded/xmp/iptcmirrors.h"
#include "imageio/embedded/xmp/xmpwriting.h"
#include "metadata/metadatatext.h"
#include "metadata/propertykeys.h"

#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <optional>
#include <string_view>

namespace plexa
{

namespace
{

constexpr long kMaxItems = 4096;

/// Are these one path into a structure? Below the property itself, its parts have the prefix that the file
/// happens to use: "Xmp.iptc.CreatorContactInfo/Iptc4xmpCore:CiAdrCity".
bool isSamePath(std::string_view a, std::string_view b)
{
    const auto takePart = [](std::string_view &path) {
        const size_t slash = path.find('/');
        std::string_view part = path.substr(0, slash);
        path.remove_prefix(slash == path.npos ? path.size() : slash + 1);
        const size_t colon = part.find(':');
        if (colon != part.npos)
            part.remove_prefix(colon + 1);
        return part;
    };
    while (!a.empty() && !b.empty()) {
        if (takePart(a) != takePart(b))
            return false;
    }
    return a.empty() && b.empty();
}

QStringList textsOf(const Exiv2::Value &value)
{
    QStringList texts;
    const auto add = [&texts](const std::string &item) {
        const QString text = trimmedAtEnd(QString::fromStdString(item));
        if (!text.isEmpty())
            texts += text;
    };
    if (const auto *languages = dynamic_cast<const Exiv2::LangAltValue *>(&value)) {
        const auto byDefault = languages->value_.find("x-default");
        if (byDefault != languages->value_.end())
            add(byDefault->second);
        else if (!languages->value_.empty())
            add(languages->value_.begin()->second);
    } else if (const auto *text = dynamic_cast<const Exiv2::XmpTextValue *>(&value)) {
        if (text->xmpStruct() == Exiv2::XmpValue::xsNone)
            add(text->value_);
    } else {
        for (long i = 0; i < std::min(value.count(), kMaxItems); ++i)
            add(value.toString(i));
    }
    return texts;
}

/// The texts under the key; empty when there are none.
QStringList textsAt(const Exiv2::XmpData &xmp, std::string_view key)
{
    const bool isInside = key.find('/') != key.npos;
    const auto found = std::find_if(xmp.begin(), xmp.end(), [&](const Exiv2::Xmpdatum &datum) {
        const std::string other = datum.key();
        return isInside ? isSamePath(other, key) : other == key;
    });
    return found == xmp.end() ? QStringList() : textsOf(found->value());
}

QString textAt(const Exiv2::XmpData &xmp, std::string_view key)
{
    return textsAt(xmp, key).value(0);
}

/// "28/10" or "2.8" or "3"
QVariant numberOf(const QString &text)
{
    bool isWhole = false;
    const int whole = text.toInt(&isWhole);
    if (isWhole)
        return whole;
    // Some lenses are identified by eight bytes in one number.
    const qlonglong large = text.toLongLong(&isWhole);
    if (isWhole)
        return large;
    const QStringList parts = text.split(u'/');
    bool hasNumerator = false;
    bool hasDenominator = true;
    const double numerator = parts[0].toDouble(&hasNumerator);
    const double denominator = parts.size() > 1 ? parts[1].toDouble(&hasDenominator) : 1;
    if (!hasNumerator || !hasDenominator || denominator == 0 || parts.size() > 2)
        return {};
    return numerator / denominator;
}

QVariant numberListOf(const QStringList &texts)
{
    QVariantList numbers;
    for (const QString &text : texts) {
        // A lens range is one text of four numbers.
        for (const QString &word : text.split(u' ', Qt::SkipEmptyParts)) {
            const QVariant number = numberOf(word);
            if (!number.isValid())
                return {};
            numbers += number;
        }
    }
    return numbers.isEmpty() ? QVariant() : QVariant(numbers);
}

/// The groups of `pattern` in `text`; empty when it does not match.
QStringList captured(const char *pattern, const QString &text)
{
    return QRegularExpression(QLatin1StringView(pattern)).match(text).capturedTexts();
}

constexpr const char *kIsoDate = "^([0-9]{4})-([0-9]{2})-([0-9]{2})(?:T([0-9]{2}):([0-9]{2})(?::([0-9]{2})"
                                 "(?:\\.([0-9]+))?)?(.*))?$";

/// "+01:00" at the end of a date that kIsoDate has matched; empty when there is none.
QString offsetOf(const QStringList &dateParts)
{
    const QString zone = dateParts.value(8);
    if (zone == u"Z")
        return QStringLiteral("+00:00");
    return captured("^[+-][0-9]{2}:[0-9]{2}$", zone).value(0);
}

/// "2010-08-13T21:00:01.85-06:00" is "2010:08:13 21:00:01"; a date without a time is not a point in time.
QVariant dateTimeOf(const QString &text)
{
    const QStringList parts = captured(kIsoDate, text);
    if (parts.size() < 6)
        return {};
    return QStringLiteral("%1:%2:%3 %4:%5:%6")
        .arg(parts[1], parts[2], parts[3], parts[4], parts[5],
             parts.value(6).isEmpty() ? QStringLiteral("00") : parts[6]);
}

QVariant iptcDateOf(const QString &text)
{
    const QStringList parts = captured(kIsoDate, text);
    return parts.size() < 4 ? QVariant() : QVariant(parts[1] + parts[2] + parts[3]);
}

/// "51,10.69686N" or "51,10,41.8N": degrees and the letter. Some programs write plain degrees, "51.178" or
/// "-1.83", with or without a letter.
struct Coordinate {
    double degrees;
    QString letter; ///< may be empty
};

std::optional<Coordinate> withinTheGlobe(const Coordinate &coordinate)
{
    const bool isLatitude = coordinate.letter == u"N" || coordinate.letter == u"S";
    return std::abs(coordinate.degrees) <= (isLatitude ? 90 : 180) ? std::optional(coordinate) : std::nullopt;
}

std::optional<Coordinate> coordinateOf(const QString &text)
{
    const QStringList parts =
        captured("^([0-9]+),([0-9]+(?:\\.[0-9]+)?)(?:,([0-9]+(?:\\.[0-9]+)?))?([NSEWnsew])$", text);
    if (parts.size() == 5)
        return withinTheGlobe({parts[1].toDouble() + parts[2].toDouble() / 60 + parts[3].toDouble() / 3600,
                               parts[4].toUpper()});
    const QStringList plain = captured("^([+-]?[0-9]{1,3}(?:\\.[0-9]+)?)([NSEWnsew]?)$", text);
    if (plain.size() < 2)
        return {};
    return withinTheGlobe({plain[1].toDouble(), plain.value(2).toUpper()});
}

QVariant degreesOf(const QString &text)
{
    const auto coordinate = coordinateOf(text);
    return coordinate ? QVariant(std::abs(coordinate->degrees)) : QVariant();
}

/// EXIF packs the flash into one number, XMP spreads it over a structure.
QVariant flashOf(const Exiv2::XmpData &xmp)
{
    const auto part = [&](const char *name) {
        return textAt(xmp, std::string("Xmp.exif.Flash/exif:") + name).toLower();
    };
    const QString fired = part("Fired");
    if (fired.isEmpty())
        return {};
    const auto isTrue = [](const QString &text) { return text == u"true" ? 1 : 0; };
    return isTrue(fired) | (part("Return").toInt() & 3) << 1 | (part("Mode").toInt() & 3) << 3 |
           isTrue(part("Function")) << 5 | isTrue(part("RedEyeMode")) << 6;
}

/// The texts of the field's own property, else of the one that other programs use for the fact (EXIF for XMP,
/// guidelines of the Metadata Working Group).
QStringList textsOfFact(const Exiv2::XmpData &xmp, const MetadataField &field)
{
    const QStringList texts = field.xmp ? textsAt(xmp, field.xmp) : QStringList();
    if (!texts.isEmpty())
        return texts;
    if (field.key == kCGImagePropertyExifISOSpeedRatings) // its name since EXIF 2.3
        return textsAt(xmp, "Xmp.exifEX.PhotographicSensitivity");
    if (field.key == kCGImagePropertyExifDateTimeDigitized)
        return textsAt(xmp, "Xmp.xmp.CreateDate");
    if (field.key == kCGImagePropertyTIFFSoftware)
        return textsAt(xmp, "Xmp.xmp.CreatorTool");
    return {};
}

} // namespace

QVariant xmpField(const Exiv2::XmpData &xmp, const MetadataField &field)
{
    if (field.key == kCGImagePropertyExifFlash)
        return flashOf(xmp);
    const QStringList texts = textsOfFact(xmp, field);
    if (texts.isEmpty())
        return {};
    const QString &first = texts.constFirst();
    switch (field.kind) {
    case MetadataKind::Text:
    case MetadataKind::Copyright:
    case MetadataKind::Comment:
        return first;
    case MetadataKind::TextList:
        return QVariantList(texts.begin(), texts.end());
    case MetadataKind::DateTime:
        return dateTimeOf(first);
    case MetadataKind::IptcDate:
        return iptcDateOf(first);
    case MetadataKind::Integer:
    case MetadataKind::Number:
        return numberOf(first);
    case MetadataKind::IntegerList:
    case MetadataKind::NumberList:
        return numberListOf(texts);
    case MetadataKind::Version:
        return versionOf(first.toUtf8());
    case MetadataKind::Degrees:
        return degreesOf(first);
    case MetadataKind::TimeOfDay:
        break;
    }
    return {};
}

void insertTimesFromXmp(QVariantMap &exif, const QVariantMap &tiff, const Exiv2::XmpData &xmp)
{
    for (const MetadataField &field : metadataFields()) {
        const SplitDate *split = splitDateOf(field);
        if (!split || (field.group == MetadataGroup::Tiff ? tiff : exif).contains(field.key))
            continue;
        const QStringList parts = captured(kIsoDate, textsOfFact(xmp, field).value(0));
        if (!parts.value(7).isEmpty() && !exif.contains(split->fraction))
            exif.insert(split->fraction, parts[7]);
        const QString offset = offsetOf(parts);
        if (!offset.isEmpty() && !exif.contains(split->zone))
            exif.insert(split->zone, offset);
    }
}

void insertIptcFromXmp(QVariantMap &iptc, const Exiv2::XmpData &xmp)
{
    const QStringList created = captured(kIsoDate, textAt(xmp, "Xmp.photoshop.DateCreated"));
    const QString offset = offsetOf(created).remove(u':');
    // A time without its date in IIM would be put together with a date of another source.
    if (created.size() > 5 && !created[4].isEmpty() && !iptc.contains(kCGImagePropertyIPTCTimeCreated) &&
        iptc.value(kCGImagePropertyIPTCDateCreated) == created[1] + created[2] + created[3])
        iptc.insert(kCGImagePropertyIPTCTimeCreated,
                    created[4] + created[5] +
                        (created.value(6).isEmpty() ? QStringLiteral("00") : created[6]) + offset);

    // Where the record or another property names another place, none is put together from both.
    QVariantMap place;
    for (const LocationPart &part : locationParts()) {
        const QString text =
            textAt(xmp, std::string("Xmp.iptcExt.LocationCreated[1]/Iptc4xmpExt:") + part.name);
        if (iptc.contains(part.key) && iptc.value(part.key).toString() != text)
            return;
        if (!text.isEmpty())
            place.insert(part.key, text);
    }
    iptc.insert(place);
}

void insertGpsFromXmp(QVariantMap &gps, const Exiv2::XmpData &xmp)
{
    const auto insert = [&gps](QLatin1StringView key, const QString &text) {
        if (!text.isEmpty() && !gps.contains(key))
            gps.insert(key, text);
    };
    const auto insertLetter = [&](const char *key, QLatin1StringView letterKey, const char *letters) {
        const auto coordinate = coordinateOf(textAt(xmp, key));
        if (coordinate && coordinate->letter.isEmpty())
            insert(letterKey, QString(QLatin1Char(coordinate->degrees < 0 ? letters[1] : letters[0])));
        else if (coordinate)
            insert(letterKey, coordinate->letter);
    };
    insertLetter("Xmp.exif.GPSLatitude", kCGImagePropertyGPSLatitudeRef, "NS");
    insertLetter("Xmp.exif.GPSLongitude", kCGImagePropertyGPSLongitudeRef, "EW");
    insertLetter("Xmp.exif.GPSDestLatitude", kCGImagePropertyGPSDestLatitudeRef, "NS");
    insertLetter("Xmp.exif.GPSDestLongitude", kCGImagePropertyGPSDestLongitudeRef, "EW");

    const QStringList moment = captured(kIsoDate, textAt(xmp, "Xmp.exif.GPSTimeStamp"));
    if (moment.size() < 4)
        return;
    const QString date = moment[1] + u':' + moment[2] + u':' + moment[3];
    insert(kCGImagePropertyGPSDateStamp, date);
    // The time of another day would make a moment that never was.
    if (gps.value(kCGImagePropertyGPSDateStamp).toString() != date)
        return;
    if (!moment.value(6).isEmpty()) {
        const QString fraction = moment.value(7).isEmpty() ? QString() : u'.' + moment[7];
        insert(kCGImagePropertyGPSTimeStamp, moment[4] + u':' + moment[5] + u':' + moment[6] + fraction);
    }
}

} // namespace plexa

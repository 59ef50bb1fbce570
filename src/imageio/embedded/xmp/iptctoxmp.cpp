// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/xmp/iptctoxmp.h"

#include "imageio/embedded/metadataclearing.h"
#include "imageio/embedded/metadatavalues.h"
#include "imageio/embedded/xmp/xmpreading.h"
#include "imageio/embedded/xmp/xmpwriting.h"
#include "metadata/metadatafields.h"
#include "metadata/metadatatext.h"
#include "metadata/propertykeys.h"
#include "metadata/propertyvalues.h"

#include <QRegularExpression>

#include <algorithm>
#include <string_view>

namespace plexa
{

namespace
{

using namespace std::string_view_literals;

/// "101500+0200" as it follows a date in XMP: "T10:15:00+02:00". Empty for anything else.
QString timeText(const QString &iptcTime)
{
    static const QRegularExpression form(
        QStringLiteral("^([0-9]{2}):?([0-9]{2}):?([0-9]{2})(?:([+-][0-9]{2}):?([0-9]{2}))?$"));
    const QRegularExpressionMatch match = form.match(iptcTime);
    if (!match.hasMatch())
        return {};
    const QString time = u'T' + match.captured(1) + u':' + match.captured(2) + u':' + match.captured(3);
    return match.captured(4).isEmpty() ? time : time + match.captured(4) + u':' + match.captured(5);
}

/// Is each of these texts the beginning of its counterpart? IIM cuts long texts.
bool areBeginnings(const QStringList &texts, const QStringList &whole)
{
    return texts.size() <= whole.size() &&
           std::equal(texts.begin(), texts.end(), whole.begin(),
                      [](const QString &text, const QString &longer) { return longer.startsWith(text); });
}

QStringList withXmlLineEnds(QStringList texts)
{
    for (QString &text : texts)
        text = plexa::withXmlLineEnds(text);
    return texts;
}

void putField(Exiv2::XmpData &xmp, const MetadataField &field, const QVariantMap &iptc)
{
    const QVariant value = iptc.value(field.key);
    QStringList texts = withXmlLineEnds(xmpTexts(field.kind, value));
    const QVariant present = xmpField(xmp, field);
    if (texts.isEmpty() || samePropertyValue(value, present) ||
        (present.isValid() && areBeginnings(texts, withXmlLineEnds(xmpTexts(field.kind, present)))))
        return;
    constexpr qsizetype kWholeDate = 10;
    if (field.key == kCGImagePropertyIPTCDateCreated && texts.constFirst().size() == kWholeDate)
        texts.first() += timeText(iptc.value(kCGImagePropertyIPTCTimeCreated).toString());
    putXmpTexts(xmp, field.xmp, texts);
}

/// Datasets that are no facts of the photo or reach XMP otherwise: character set and versions of the records,
/// the program, and what putField() and putCodes() read.
constexpr std::string_view kOtherDataSets[] = {
    "Iptc.Envelope.ModelVersion"sv,         "Iptc.Envelope.CharacterSet"sv,
    "Iptc.Envelope.FileFormat"sv,           "Iptc.Envelope.FileVersion"sv,
    "Iptc.Application2.RecordVersion"sv,    "Iptc.Application2.Program"sv,
    "Iptc.Application2.ProgramVersion"sv,   "Iptc.Application2.Subject"sv,
    "Iptc.Application2.ObjectAttribute"sv,  "Iptc.Application2.TimeCreated"sv,
    "Iptc.Application2.DigitizationDate"sv, "Iptc.Application2.DigitizationTime"sv,
};

/// The name of a dataset that has none in the library's table, as exiftool calls it.
QString nameOfDataSet(const Exiv2::Iptcdatum &datum)
{
    if (datum.record() == Exiv2::IptcDataSets::application2 && datum.tag() == 230)
        return QStringLiteral("DocumentNotes");
    if (datum.record() == Exiv2::IptcDataSets::application2 && datum.tag() == 231)
        return QStringLiteral("DocumentHistory");
    return QString::fromStdString(datum.tagName());
}

/// The day on which the picture was digitized, where EXIF and XMP do not state it.
void putDigitizationDate(Exiv2::XmpData &xmp, const QVariantMap &properties)
{
    const QVariantMap iptc = groupDictionary(properties, MetadataGroup::Iptc);
    const QStringList date =
        xmpTexts(MetadataKind::IptcDate, iptc.value(kCGImagePropertyIPTCDigitalCreationDate));
    if (!date.isEmpty() && xmp.findKey(Exiv2::XmpKey("Xmp.xmp.CreateDate")) == xmp.end() &&
        !groupDictionary(properties, MetadataGroup::Exif).contains(kCGImagePropertyExifDateTimeDigitized))
        putXmpTexts(
            xmp, "Xmp.xmp.CreateDate",
            {date.constFirst() + timeText(iptc.value(kCGImagePropertyIPTCDigitalCreationTime).toString())});
}

/// Facts whose XMP home is read for nothing else. IIM: "IPTC:04000000:...", XMP: "04000000".
void putCodes(Exiv2::XmpData &xmp, const QVariantMap &iptc)
{
    QStringList codes;
    static const QRegularExpression code(QStringLiteral("\\b[0-9]{8}\\b"));
    for (const QString &text : propertyTexts(iptc.value(kCGImagePropertyIPTCSubjectReference))) {
        const QRegularExpressionMatch match = code.match(text);
        if (match.hasMatch())
            codes += match.captured();
    }
    if (!codes.isEmpty() && xmp.findKey(Exiv2::XmpKey("Xmp.iptc.SubjectCode")) == xmp.end())
        putXmpTexts(xmp, "Xmp.iptc.SubjectCode", codes);
    const QStringList genres = propertyTexts(iptc.value(kCGImagePropertyIPTCObjectAttributeReference));
    if (!genres.isEmpty() && xmp.findKey(Exiv2::XmpKey("Xmp.iptc.IntellectualGenre")) == xmp.end())
        putXmpTexts(xmp, "Xmp.iptc.IntellectualGenre", genres);
}

} // namespace

void addIptcToXmp(Exiv2::XmpData &xmp, const QVariantMap &properties)
{
    const QVariantMap iptc = groupDictionary(properties, MetadataGroup::Iptc);
    for (const MetadataField &field : metadataFields()) {
        if (field.group != MetadataGroup::Iptc || !field.iptc || !field.xmp)
            continue;
        try {
            putField(xmp, field, iptc);
        } catch (const std::exception &) {
            // A value that the library refuses is left out; the other fields are not its fault.
        }
    }
    try {
        putCodes(xmp, iptc);
        putDigitizationDate(xmp, properties);
    } catch (const std::exception &) {
        // The same.
    }
    // The copy has no record that it could be a digest of.
    eraseXmpProperty(xmp, "Xmp.photoshop.LegacyIPTCDigest");
}

QStringList iptcWithoutPlaceInXmp(const Exiv2::IptcData &iptc)
{
    QStringList names;
    for (const Exiv2::Iptcdatum &datum : iptc) {
        const std::string key = datum.key();
        const bool hasPlace = std::ranges::any_of(metadataFields(), [&key](const MetadataField &field) {
            return field.xmp && field.iptc && key == field.iptc;
        });
        if (!hasPlace && std::ranges::find(kOtherDataSets, key) == std::end(kOtherDataSets))
            names += QStringLiteral("IPTC field %1").arg(nameOfDataSet(datum));
    }
    names.removeDuplicates();
    return names;
}

void addTiffTextsToXmp(Exiv2::XmpData &xmp, const QVariantMap &properties)
{
    const QVariantMap tiff = groupDictionary(properties, MetadataGroup::Tiff);
    const auto add = [&](QLatin1StringView key, const char *name) {
        const QStringList texts = propertyTexts(tiff.value(key));
        if (!texts.isEmpty() && xmp.findKey(Exiv2::XmpKey(name)) == xmp.end())
            putXmpTexts(xmp, name, texts);
    };
    add(kCGImagePropertyTIFFArtist, "Xmp.tiff.Artist");
    add(kCGImagePropertyTIFFCopyright, "Xmp.tiff.Copyright");
    add(kCGImagePropertyTIFFImageDescription, "Xmp.tiff.ImageDescription");
    add(kCGImagePropertyTIFFSoftware, "Xmp.tiff.Software");
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/xmp/iptctoxmp.h"

#include "imageio/embedded/metadataclearing.h"
#include "imageio/embedded/metadatavalues.h"
#include "imageio/embedded/xmp/xmpreading.h"
#include "imageio/embedded/xmp/xmpwriting.h"
#include "metadata/metadatafields.h"
#include "metadata/propertykeys.h"
#include "metadata/propertyvalues.h"

#include <QRegularExpression>

namespace plexa
{

namespace
{

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

/// IIM ends lines with CR, XML with LF; they are the same text.
QStringList withXmlLineEnds(QStringList texts)
{
    for (QString &text : texts)
        text.replace(u"\r\n"_qs, u"\n"_qs).replace(u'\r', u'\n');
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
    } catch (const std::exception &) {
        // The same.
    }
    // The copy has no record that it could be a digest of.
    eraseXmpProperty(xmp, "Xmp.photoshop.LegacyIPTCDigest");
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
}

} // namespace plexa

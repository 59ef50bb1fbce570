// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/textsoftiff.h"

#include "metadata/metadatafields.h"
#include "metadata/propertykeys.h"
#include "metadata/propertyvalues.h"

namespace plexa
{

namespace
{

using enum MetadataGroup;

struct SharedText {
    QLatin1StringView iptcKey;
    QLatin1StringView tiffKey;
    bool isList; ///< in IPTC
};

constexpr SharedText kSharedTexts[] = {
    {kCGImagePropertyIPTCByline, kCGImagePropertyTIFFArtist, true},
    {kCGImagePropertyIPTCCopyrightNotice, kCGImagePropertyTIFFCopyright, false},
    {kCGImagePropertyIPTCCaptionAbstract, kCGImagePropertyTIFFImageDescription, false},
};

/// The text of TIFF in the form that it has in IPTC; none if there is none.
QVariant textOfTiff(const QVariantMap &properties, const SharedText &shared)
{
    const QString text = groupDictionary(properties, Tiff).value(shared.tiffKey).toString();
    if (text.trimmed().isEmpty())
        return {};
    return shared.isList ? QVariant(QVariantList{text}) : QVariant(text);
}

} // namespace

QVariantMap withTextsOfTiff(QVariantMap properties)
{
    QVariantMap iptc = groupDictionary(properties, Iptc);
    const qsizetype count = iptc.size();
    for (const SharedText &shared : kSharedTexts) {
        const QVariant text = textOfTiff(properties, shared);
        if (text.isValid() && !iptc.contains(shared.iptcKey))
            iptc.insert(shared.iptcKey, text);
    }
    if (iptc.size() > count)
        properties.insert(dictionaryKey(Iptc), iptc);
    return properties;
}

QVariantMap withoutTextsOfTiff(QVariantMap properties, const QVariantMap &ofFile)
{
    const QVariantMap iptcOfFile = groupDictionary(ofFile, Iptc);
    QVariantMap iptc = groupDictionary(properties, Iptc);
    for (const SharedText &shared : kSharedTexts) {
        const QVariant added = textOfTiff(ofFile, shared);
        if (added.isValid() && !iptcOfFile.contains(shared.iptcKey) &&
            samePropertyValue(iptc.value(shared.iptcKey), added) &&
            samePropertyValue(textOfTiff(properties, shared), added))
            iptc.remove(shared.iptcKey);
    }
    properties.insert(dictionaryKey(Iptc), iptc);
    return properties;
}

} // namespace plexa

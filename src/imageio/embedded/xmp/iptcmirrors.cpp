// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/xmp/iptcmirrors.h"

#include "imageio/embedded/metadataclearing.h"
#include "imageio/embedded/xmp/xmpwriting.h"
#include "metadata/metadatatext.h"
#include "metadata/propertykeys.h"

#include <QRegularExpression>

#include <algorithm>
#include <string>

namespace plexa
{

namespace
{

bool isStillTrue(const QString &entry, const QStringList &before, const QStringList &after)
{
    static const QRegularExpression separators(QStringLiteral("[|/]"));
    const QStringList names = entry.split(separators);
    return (after.contains(entry) || after.contains(names.last())) &&
           std::all_of(names.begin(), names.end(),
                       [&](const QString &name) { return after.contains(name) || !before.contains(name); });
}

void updateTree(Exiv2::XmpData &xmp, const char *property, const QStringList &before,
                const QStringList &after)
{
    const Exiv2::XmpKey key(property);
    const auto found = xmp.findKey(key);
    if (found == xmp.end())
        return;
    Exiv2::XmpArrayValue entries(found->typeId() == Exiv2::xmpSeq ? Exiv2::xmpSeq : Exiv2::xmpBag);
    for (long i = 0; i < found->count(); ++i) {
        const std::string entry = found->toString(i);
        if (isStillTrue(QString::fromStdString(entry), before, after))
            entries.read(entry);
    }
    if (entries.count() == found->count())
        return;
    eraseXmpProperty(xmp, property);
    if (entries.count() > 0)
        xmp.add(key, &entries);
}

constexpr LocationPart kParts[] = {
    {"Sublocation", kCGImagePropertyIPTCSubLocation},
    {"City", kCGImagePropertyIPTCCity},
    {"ProvinceState", kCGImagePropertyIPTCProvinceState},
    {"CountryName", kCGImagePropertyIPTCCountryPrimaryLocationName},
    {"CountryCode", kCGImagePropertyIPTCCountryPrimaryLocationCode},
};

constexpr const char *kLocation = "Xmp.iptcExt.LocationCreated";

bool isInLocation(const Exiv2::Xmpdatum &datum)
{
    return datum.key().starts_with(std::string(kLocation) + '[');
}

/// Is the datum the part, in any of the locations?
bool isPart(const Exiv2::Xmpdatum &datum, const char *name)
{
    const std::string key = datum.key();
    const size_t colon = key.find_last_of(':');
    return isInLocation(datum) && colon != key.npos && key.compare(colon + 1, key.npos, name) == 0;
}

} // namespace

void updateKeywordLists(Exiv2::XmpData &xmp, const QStringList &before, const QStringList &after)
{
    for (const char *tree : {"Xmp.lr.hierarchicalSubject", "Xmp.digiKam.TagsList",
                             "Xmp.MicrosoftPhoto.LastKeywordXMP", "Xmp.MicrosoftPhoto.LastKeywordIPTC",
                             "Xmp.mediapro.CatalogSets", "Xmp.expressionmedia.CatalogSets"})
        updateTree(xmp, tree, before, after);
    for (const char *list : {"Xmp.mwg-kw.Keywords", "Xmp.pdf.Keywords", "Xmp.acdsee.categories",
                             "Xmp.acdsee.keywords", "Xmp.ics.TagStructure"})
        eraseXmpProperty(xmp, list);
}

std::span<const LocationPart> locationParts()
{
    return kParts;
}

void updateLocationCreated(Exiv2::XmpData &xmp, QLatin1StringView key, const QString &text)
{
    const auto part = std::find_if(std::begin(kParts), std::end(kParts),
                                   [key](const LocationPart &candidate) { return candidate.key == key; });
    if (part == std::end(kParts))
        return;
    if (text.isEmpty()) {
        eraseMetadataIf(xmp, [&](const Exiv2::Xmpdatum &datum) { return isPart(datum, part->name); });
        const bool hasValue = std::any_of(xmp.begin(), xmp.end(), [](const Exiv2::Xmpdatum &datum) {
            return isInLocation(datum) && datum.count() > 0 && !datum.toString().empty();
        });
        if (!hasValue)
            eraseXmpProperty(xmp, kLocation);
        return;
    }
    const Exiv2::XmpTextValue value = plainXmpText(xmlText(text).toStdString());
    for (Exiv2::Xmpdatum &datum : xmp) {
        if (isPart(datum, part->name))
            datum.setValue(&value);
    }
}

} // namespace plexa

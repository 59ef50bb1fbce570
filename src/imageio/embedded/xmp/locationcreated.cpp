// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/xmp/locationcreated.h"

#include "imageio/embedded/metadataclearing.h"
#include "imageio/embedded/xmp/xmpwriting.h"
#include "metadata/metadatatext.h"
#include "metadata/propertykeys.h"

#include <algorithm>
#include <string>

namespace plexa
{

namespace
{

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
        const bool saysSomething = std::any_of(xmp.begin(), xmp.end(), [](const Exiv2::Xmpdatum &datum) {
            return isInLocation(datum) && datum.count() > 0 && !datum.toString().empty();
        });
        if (!saysSomething)
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

// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/exif/apexvalues.h"

#include "imageio/embedded/metadatavalues.h"
#include "metadata/propertykeys.h"
#include "metadata/propertyvalues.h"

#include <cmath>

namespace plexa
{

namespace
{

struct ApexPair {
    QLatin1StringView plain;
    QLatin1StringView exponent;
    double factor; ///< exponent = factor * log2(plain)
};

constexpr ApexPair kPairs[] = {
    {kCGImagePropertyExifFNumber, kCGImagePropertyExifApertureValue, 2},
    {kCGImagePropertyExifExposureTime, kCGImagePropertyExifShutterSpeedValue, -1},
};

} // namespace

QVariantMap withAgreeingApexValues(const QVariantMap &before, const QVariantMap &after)
{
    const QVariantMap oldExif = before.value(kCGImagePropertyExifDictionary).toMap();
    QVariantMap exif = after.value(kCGImagePropertyExifDictionary).toMap();
    bool hasChanged = false;
    for (const ApexPair &pair : kPairs) {
        const QVariant plain = exif.value(pair.plain);
        if (!exif.contains(pair.exponent) || samePropertyValue(oldExif.value(pair.plain), plain) ||
            !samePropertyValue(oldExif.value(pair.exponent), exif.value(pair.exponent)))
            continue;
        const double exponent = pair.factor * std::log2(plain.toDouble());
        // A millionth of a stop, so that it is a fraction of small numbers.
        if (std::isfinite(exponent) && !rationalText(plain.toDouble()).isEmpty())
            exif.insert(pair.exponent, std::round(exponent * 1e6) / 1e6);
        else
            exif.remove(pair.exponent);
        hasChanged = true;
    }
    if (!hasChanged)
        return after;
    QVariantMap agreeing = after;
    agreeing.insert(kCGImagePropertyExifDictionary, exif);
    return agreeing;
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/exif/pictureregions.h"

#include "imageio/embedded/metadataclearing.h"

namespace plexa
{

void eraseRegionsFromExif(Exiv2::ExifData &exif)
{
    eraseExifFields(exif,
                    {"Exif.Photo.SubjectArea", "Exif.Photo.SubjectLocation", "Exif.Image.SubjectLocation"});
}

bool eraseRegionsFromXmp(Exiv2::XmpData &xmp)
{
    eraseXmpProperty(xmp, "Xmp.exif.SubjectArea");
    eraseXmpProperty(xmp, "Xmp.exif.SubjectLocation");
    bool hadPeople = eraseXmpProperty(xmp, "Xmp.mwg-rs.Regions");
    hadPeople = eraseXmpProperty(xmp, "Xmp.MP.RegionInfo") || hadPeople;
    eraseMetadataIf(xmp, [&](const Exiv2::Xmpdatum &datum) {
        const bool isRegion = datum.groupName() == "acdsee-rs" || datum.groupName() == "apple-fi";
        hadPeople = hadPeople || isRegion;
        return isRegion;
    });
    return hadPeople;
}

} // namespace plexa

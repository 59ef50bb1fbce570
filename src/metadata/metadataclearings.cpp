// SPDX-License-Identifier: GPL-3.0-or-later

#include "metadata/metadataclearings.h"

#include "metadata/imagemetadata.h"

namespace plexa
{

namespace
{

using enum MetadataClearing;

constexpr MetadataClearingRow kRows[] = {
    {All, QLatin1StringView("all")},
    {AllButCopyright, QLatin1StringView("all-but-copyright")},
    {AllButCopyrightAndContact, QLatin1StringView("all-but-copyright-and-contact")},
    {Gps, QLatin1StringView("gps")},
    {Iptc, QLatin1StringView("iptc")},
    {Exif, QLatin1StringView("exif")},
};

} // namespace

std::span<const MetadataClearingRow> metadataClearings()
{
    return kRows;
}

void clearMetadata(ImageMetadata &metadata, MetadataClearing clearing)
{
    const bool isAll =
        clearing == All || clearing == AllButCopyright || clearing == AllButCopyrightAndContact;
    const bool keepsContact = clearing == AllButCopyrightAndContact;
    const bool keepsCopyright = clearing == AllButCopyright || keepsContact;
    if (isAll || clearing == Exif)
        metadata.clearExifData();
    if (isAll || clearing == Iptc)
        metadata.clearIptcDataKeepCopyright(keepsCopyright, keepsContact);
    if (isAll || clearing == Exif)
        metadata.clearTiffDataKeepCopyright(keepsCopyright, keepsContact);
    if (isAll || clearing == Gps)
        metadata.clearGPSData();
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/xmpvocabularies.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>

namespace plexa
{

namespace
{

constexpr std::string_view kPdf = "http://ns.adobe.com/pdf/1.3/";
constexpr std::string_view kGetty = "http://xmp.gettyimages.com/gift/1.0/";

/// These speak of nothing else.
constexpr std::string_view kDescriptions[] = {
    "http://www.metadataworkinggroup.com/schemas/regions/",
    "http://www.metadataworkinggroup.com/schemas/keywords/",
    "http://www.metadataworkinggroup.com/schemas/collections/",
    "http://ns.microsoft.com/photo/1.2/", // regions with people's names
    "http://ns.acdsee.com/regions/",
    "http://ns.camerabits.com/photomechanic/1.0/",
    "http://ns.idimager.com/ics/1.0/",
    kGetty,
};

std::string namespaceOf(const Exiv2::Xmpdatum &datum)
{
    try {
        return Exiv2::XmpProperties::ns(datum.groupName());
    } catch (const std::exception &) {
        return {}; // a prefix that nothing has declared
    }
}

/// The name of the property at the top.
std::string topName(const Exiv2::Xmpdatum &datum)
{
    const std::string path = datum.tagName();
    return path.substr(0, path.find_first_of("/["));
}

} // namespace

bool isDescriptionInXmp(const Exiv2::Xmpdatum &datum)
{
    const std::string uri = namespaceOf(datum);
    const std::string name = topName(datum);
    if (uri == kPdf)
        return name == "Author" || name == "Keywords" || name == "Copyright" || name == "Title" ||
               name == "Subject";
    return std::find(std::begin(kDescriptions), std::end(kDescriptions), uri) != std::end(kDescriptions) &&
           !isCameraInXmp(datum);
}

bool isCellTowerInXmp(const Exiv2::Xmpdatum &datum)
{
    return namespaceOf(datum) == "http://developer.sonyericsson.com/cell/1.0/";
}

bool isCameraInXmp(const Exiv2::Xmpdatum &datum)
{
    return namespaceOf(datum) == kGetty && topName(datum).starts_with("Camera");
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/xmp/xmpvocabularies.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>

namespace plexa
{

namespace
{

constexpr std::string_view kGetty = "http://xmp.gettyimages.com/gift/1.0/";
constexpr std::string_view kPdf = "http://ns.adobe.com/pdf/1.3/";
constexpr std::string_view kBasic = "http://ns.adobe.com/xap/1.0/";
constexpr std::string_view kRights = "http://ns.adobe.com/xap/1.0/rights/";
constexpr std::string_view kMedia = "http://ns.adobe.com/xmp/1.0/DynamicMedia/";
constexpr std::string_view kRawSettings = "http://ns.adobe.com/camera-raw-settings/1.0/";
constexpr std::string_view kPanorama = "http://ns.google.com/photos/1.0/panorama/";
constexpr std::string_view kLicence = "http://creativecommons.org/ns#";
constexpr std::string_view kPublishing = "http://prismstandard.org/namespaces/";
constexpr std::string_view kUsageRights = "http://prismstandard.org/namespaces/prismusagerights/";

/// These speak of nothing else.
constexpr std::string_view kDescriptions[] = {
    "http://www.metadataworkinggroup.com/schemas/regions/",
    "http://www.metadataworkinggroup.com/schemas/keywords/",
    "http://www.metadataworkinggroup.com/schemas/collections/",
    "http://ns.microsoft.com/photo/1.2/", // regions with people's names
    "http://ns.acdsee.com/regions/",
    "http://ns.adobe.com/album/1.0/",
    "http://ns.camerabits.com/photomechanic/1.0/",
    "http://ns.idimager.com/ics/1.0/",
    kGetty,
    kLicence,
};

/// A property of a vocabulary that speaks of other things, too.
struct Property {
    std::string_view uri;
    std::string_view name;
};

constexpr Property kDescribing[] = {
    {kPdf, "Author"},        {kPdf, "Keywords"},      {kPdf, "Copyright"},
    {kPdf, "Title"},         {kPdf, "Subject"},       {kBasic, "Author"},
    {kBasic, "Title"},       {kBasic, "Description"}, {kBasic, "Keywords"},
    {kBasic, "Nickname"},    {kMedia, "album"},       {kMedia, "artist"},
    {kMedia, "client"},      {kMedia, "comment"},     {kMedia, "composer"},
    {kMedia, "copyright"},   {kMedia, "director"},    {kMedia, "directorPhotography"},
    {kMedia, "engineer"},    {kMedia, "genre"},       {kMedia, "logComment"},
    {kMedia, "projectName"}, {kMedia, "scene"},       {kMedia, "shotLocation"},
    {kMedia, "shotName"},
};

constexpr Property kOfRights[] = {{kPdf, "Copyright"}, {kMedia, "copyright"}};

constexpr Property kOfExposure[] = {
    {kRawSettings, "CameraProfile"},     {kRawSettings, "CameraProfileDigest"},
    {kRawSettings, "LensProfileName"},   {kRawSettings, "LensProfileFilename"},
    {kRawSettings, "LensProfileDigest"}, {kPanorama, "FirstPhotoDate"},
    {kPanorama, "LastPhotoDate"},        {kMedia, "shotDate"},
};

constexpr Property kOfCamera[] = {
    {"http://ns.microsoft.com/photo/1.1", "CameraModelID"},
    {"http://ns.microsoft.com/photo/1.1/", "CameraModelID"},
    {kMedia, "cameraModel"},
    {kMedia, "cameraLabel"},
    {kRawSettings, "CameraModelRestriction"},
};

template<size_t count>
bool isOneOf(const Property (&properties)[count], const std::string &uri, const std::string &name)
{
    return std::any_of(std::begin(properties), std::end(properties), [&](const Property &property) {
        return property.uri == uri && property.name == name;
    });
}

/// The name of the property at the top.
std::string topName(const Exiv2::Xmpdatum &datum)
{
    const std::string path = datum.tagName();
    return path.substr(0, path.find_first_of("/["));
}

} // namespace

bool isDescriptionInXmp(const Exiv2::Xmpdatum &datum, const XmpNamespaces &namespaces)
{
    const std::string uri = namespaces.addressOf(datum.groupName());
    return isOneOf(kDescribing, uri, topName(datum)) || uri.starts_with(kPublishing) ||
           (std::find(std::begin(kDescriptions), std::end(kDescriptions), uri) != std::end(kDescriptions) &&
            !isCameraInXmp(datum, namespaces));
}

bool isRightInXmp(const Exiv2::Xmpdatum &datum, const XmpNamespaces &namespaces)
{
    const std::string uri = namespaces.addressOf(datum.groupName());
    return uri == kRights || uri == kLicence || uri.starts_with(kUsageRights) ||
           isOneOf(kOfRights, uri, topName(datum));
}

bool isExposureInXmp(const Exiv2::Xmpdatum &datum, const XmpNamespaces &namespaces)
{
    return isOneOf(kOfExposure, namespaces.addressOf(datum.groupName()), topName(datum));
}

bool isCellTowerInXmp(const Exiv2::Xmpdatum &datum, const XmpNamespaces &namespaces)
{
    return namespaces.addressOf(datum.groupName()) == "http://developer.sonyericsson.com/cell/1.0/";
}

bool isCameraInXmp(const Exiv2::Xmpdatum &datum, const XmpNamespaces &namespaces)
{
    const std::string uri = namespaces.addressOf(datum.groupName());
    const std::string name = topName(datum);
    return (uri == kGetty && name.starts_with("Camera")) || isOneOf(kOfCamera, uri, name);
}

} // namespace plexa

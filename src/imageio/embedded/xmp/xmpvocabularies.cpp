// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/xmp/xmpvocabularies.h"

#include "imageio/embedded/metadataclearing.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace plexa
{

namespace
{

using enum XmpTopic;

constexpr std::string_view kGetty = "http://xmp.gettyimages.com/gift/1.0/";
constexpr std::string_view kPdf = "http://ns.adobe.com/pdf/1.3/";
constexpr std::string_view kBasic = "http://ns.adobe.com/xap/1.0/";
constexpr std::string_view kMedia = "http://ns.adobe.com/xmp/1.0/DynamicMedia/";
constexpr std::string_view kRawSettings = "http://ns.adobe.com/camera-raw-settings/1.0/";
constexpr std::string_view kLicense = "http://creativecommons.org/ns#";

/// Properties of a vocabulary that belong to the topic.
struct Vocabulary {
    XmpTopic topic;
    std::string_view address;                      ///< its beginning
    std::initializer_list<std::string_view> names; ///< beginnings of the properties' names; none: all
};

const Vocabulary kVocabularies[] = {
    {Camera, kGetty, {"Camera"}},
    {Camera, "http://ns.microsoft.com/photo/1.1", {"CameraModelID"}},
    {Camera, kMedia, {"cameraModel", "cameraLabel"}},
    {Camera, kRawSettings, {"CameraModelRestriction"}},
    {CellTower, "http://developer.sonyericsson.com/cell/1.0/", {}},
    {Exposure,
     kRawSettings,
     {"CameraProfile", "LensProfileName", "LensProfileFilename", "LensProfileDigest"}},
    {Exposure, "http://ns.google.com/photos/1.0/panorama/", {"FirstPhotoDate", "LastPhotoDate"}},
    {Exposure, kMedia, {"shotDate"}},
    {Rights, "http://ns.adobe.com/xap/1.0/rights/", {}},
    {Rights, kLicense, {}},
    {Rights, "http://prismstandard.org/namespaces/prismusagerights/", {}},
    {Rights, kPdf, {"Copyright"}},
    {Rights, kMedia, {"copyright"}},
    {Description, "http://www.metadataworkinggroup.com/schemas/regions/", {}},
    {Description, "http://www.metadataworkinggroup.com/schemas/keywords/", {}},
    {Description, "http://www.metadataworkinggroup.com/schemas/collections/", {}},
    {Description, "http://ns.microsoft.com/photo/1.2/", {}}, // regions with people's names
    {Description, "http://ns.acdsee.com/regions/", {}},
    {Description, "http://ns.adobe.com/album/1.0/", {}},
    {Description, "http://ns.camerabits.com/photomechanic/1.0/", {}},
    {Description, "http://ns.idimager.com/ics/1.0/", {}},
    {Description, "http://prismstandard.org/namespaces/", {}},
    {Description, kGetty, {}},
    {Description, kLicense, {}},
    {Description, kPdf, {"Author", "Keywords", "Copyright", "Title", "Subject"}},
    {Description, kBasic, {"Author", "Title", "Description", "Keywords", "Nickname"}},
    {Description,
     kMedia,
     {"album", "artist", "client", "comment", "composer", "copyright", "director", "engineer", "genre",
      "logComment", "projectName", "scene", "shotLocation", "shotName"}},
};

} // namespace

bool isAbout(XmpTopic topic, const Exiv2::Xmpdatum &datum, const XmpNamespaces &namespaces)
{
    const std::string address = namespaces.addressOf(datum.groupName());
    const std::string path = datum.tagName();
    const bool isFound =
        std::any_of(std::begin(kVocabularies), std::end(kVocabularies), [&](const Vocabulary &vocabulary) {
            return vocabulary.topic == topic && address.starts_with(vocabulary.address) &&
                   (vocabulary.names.size() == 0 || startsWithAny(path, vocabulary.names));
        });
    return isFound && !(topic == Description && isAbout(Camera, datum, namespaces));
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/exif/exiv2setup.h"

#include <exiv2/exiv2.hpp>

namespace plexa
{

namespace
{

// Never destroyed: a thread that outlives main() may still hold them.
std::recursive_mutex &namespaceMutex()
{
    static auto *mutex = new std::recursive_mutex;
    return *mutex;
}

void lockOrUnlock(void *mutex, bool lock)
{
    if (lock)
        static_cast<std::recursive_mutex *>(mutex)->lock();
    else
        static_cast<std::recursive_mutex *>(mutex)->unlock();
}

struct Namespace {
    const char *uri;
    const char *prefix;
};

// What phones and lens databases write and the library does not know by itself.
constexpr Namespace kNamespaces[] = {
    {"http://ns.adobe.com/hdr-gain-map/1.0/", "hdrgm"},
    {"http://ns.apple.com/HDRGainMap/1.0/", "HDRGainMap"},
    {"http://ns.apple.com/pixeldatainfo/1.0/", "apdi"},
    {"http://ns.google.com/photos/1.0/container/", "Container"},
    {"http://ns.google.com/photos/1.0/container/item/", "Item"},
    {"http://ns.google.com/photos/1.0/camera/", "GCamera"},
    {"http://ns.google.com/photos/1.0/image/", "GImage"},
    {"http://ns.google.com/photos/1.0/depthmap/", "GDepth"},
    {"http://cipa.jp/exif/1.0/", "exifEX"},
    {"http://www.dji.com/drone-dji/1.0/", "drone-dji"},
};

} // namespace

void prepareMetadataLibrary()
{
    static std::once_flag once;
    std::call_once(once, [] {
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
        Exiv2::LogMsg::setHandler(nullptr);
        Exiv2::enableBMFF(true);
        Exiv2::XmpParser::initialize(lockOrUnlock, &namespaceMutex());
        for (const Namespace &entry : kNamespaces) {
            try {
                if (Exiv2::XmpProperties::prefix(entry.uri).empty())
                    Exiv2::XmpProperties::registerNs(entry.uri, entry.prefix);
            } catch (const std::exception &) {
                // The namespace stays one that the library makes up a prefix for.
            }
        }
    });
}

std::unique_lock<std::recursive_mutex> lockXmpNamespaces()
{
    return std::unique_lock(namespaceMutex());
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/exif/exiv2setup.h"

#include "imageio/embedded/xmp/xmpnamespaces.h"

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

} // namespace

void prepareMetadataLibrary()
{
    static std::once_flag once;
    std::call_once(once, [] {
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
        Exiv2::LogMsg::setHandler(nullptr);
        Exiv2::enableBMFF(true);
        Exiv2::XmpParser::initialize(lockOrUnlock, &namespaceMutex());
        registerXmpNamespaces();
    });
}

std::unique_lock<std::recursive_mutex> lockXmpNamespaces()
{
    return std::unique_lock(namespaceMutex());
}

} // namespace plexa

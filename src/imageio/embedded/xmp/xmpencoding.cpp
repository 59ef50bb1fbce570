// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/xmp/xmpencoding.h"

#include "imageio/embedded/exif/exiv2setup.h"

#include <map>
#include <optional>
#include <string>

namespace plexa
{

namespace
{

/// @return none where the library refuses a property
std::optional<QByteArray> attemptedPacket(const Exiv2::XmpData &xmp)
{
    try {
        std::string packet;
        const auto lock = lockXmpNamespaces();
        if (Exiv2::XmpParser::encode(packet, xmp, Exiv2::XmpParser::useCompactFormat) == 0)
            return QByteArray::fromStdString(packet);
    } catch (const std::exception &) {
        // The library reports some refusals by an exception, others by its result.
    }
    return {};
}

/// "dc:title" for "Xmp.dc.title" and everything inside of it.
std::string topName(const Exiv2::Xmpdatum &datum, const XmpNamespaces &namespaces)
{
    const std::string path = datum.tagName();
    return namespaces.prefixOf(datum.groupName()).toStdString() + ':' +
           path.substr(0, path.find_first_of("/[?"));
}

} // namespace

QByteArray encodedXmp(const DecodedXmp &xmp, QStringList &omitted)
{
    if (xmp.data.empty())
        return {};
    if (const auto packet = attemptedPacket(xmp.data))
        return xmp.namespaces.packetForFile(*packet);
    std::map<std::string, Exiv2::XmpData> byName;
    for (const Exiv2::Xmpdatum &datum : xmp.data)
        byName[topName(datum, xmp.namespaces)].add(datum);
    Exiv2::XmpData rest;
    QStringList refused;
    for (const auto &[name, property] : byName) {
        if (!attemptedPacket(property)) {
            refused += QStringLiteral("XMP ") + QString::fromStdString(name);
            continue;
        }
        for (const Exiv2::Xmpdatum &datum : property)
            rest.add(datum);
    }
    const auto packet = attemptedPacket(rest);
    if (!packet || refused.empty() || rest.empty()) {
        omitted += QStringLiteral("XMP");
        return {};
    }
    omitted += refused;
    return xmp.namespaces.packetForFile(*packet);
}

} // namespace plexa

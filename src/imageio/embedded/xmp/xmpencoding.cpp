// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/xmp/xmpencoding.h"

#include "imageio/embedded/xmp/xmpdeclarations.h"

#include <map>
#include <optional>
#include <set>
#include <string>

namespace plexa
{

namespace
{

std::optional<QByteArray> attemptedPacket(const Exiv2::XmpData &xmp)
{
    try {
        std::string packet;
        if (Exiv2::XmpParser::encode(packet, xmp, Exiv2::XmpParser::useCompactFormat) == 0)
            return withXmpNamespaces(QByteArray::fromStdString(packet));
    } catch (const std::exception &) {
        // Some refusals are told in one way, some in the other.
    }
    return {};
}

/// "dc:title" for "Xmp.dc.title" and everything inside of it.
std::string topName(const Exiv2::Xmpdatum &datum)
{
    const std::string path = datum.tagName();
    return datum.groupName() + ':' + path.substr(0, path.find_first_of("/[?"));
}

} // namespace

QByteArray encodedXmp(const Exiv2::XmpData &xmp, QStringList &omitted)
{
    if (xmp.empty())
        return {};
    if (const auto packet = attemptedPacket(xmp))
        return *packet;
    std::map<std::string, Exiv2::XmpData> byName;
    for (const Exiv2::Xmpdatum &datum : xmp)
        byName[topName(datum)].add(datum);
    std::set<std::string> refused;
    for (const auto &[name, property] : byName) {
        if (!attemptedPacket(property))
            refused.insert(name);
    }
    Exiv2::XmpData rest;
    for (const Exiv2::Xmpdatum &datum : xmp) {
        if (!refused.contains(topName(datum)))
            rest.add(datum);
    }
    const auto packet = attemptedPacket(rest);
    if (!packet || refused.empty() || rest.empty()) {
        omitted += QStringLiteral("XMP");
        return {};
    }
    for (const std::string &name : refused)
        omitted += QStringLiteral("XMP ") + QString::fromStdString(name);
    return *packet;
}

} // namespace plexa

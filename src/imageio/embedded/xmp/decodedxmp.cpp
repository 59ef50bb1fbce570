// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/xmp/decodedxmp.h"

#include "imageio/embedded/exif/exiv2setup.h"
#include "imageio/embedded/metadatablocks.h"
#include "imageio/embedded/metadataset.h"
#include "metadata/metadatatext.h"

#include <QRegularExpression>

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <string_view>

namespace plexa
{

namespace
{

using namespace Qt::Literals::StringLiterals;
using namespace std::string_view_literals;

/// The text of a packet that is not UTF-8. Each run of letters beyond ASCII is judged alone: programs paste
/// one encoding into the other.
QString textOf(const QByteArray &packet)
{
    const auto isAscii = [](char byte) { return static_cast<uchar>(byte) < 0x80; };
    QString text;
    for (auto at = packet.begin(); at != packet.end();) {
        const auto ascii = std::find_if_not(at, packet.end(), isAscii);
        const auto end = std::find_if(ascii, packet.end(), isAscii);
        text += QLatin1StringView(at, ascii) + decodedText(QByteArray(ascii, end - ascii));
        at = end;
    }
    return text;
}

/// Without the faults that programs are known for: bytes that are not UTF-8 (read as Windows-1252),
/// characters that XML cannot hold, and "&" that begins no reference.
std::string repairedPacket(const QByteArray &packet)
{
    static const QRegularExpression bare(u"&(?!(amp|lt|gt|quot|apos|#[0-9]+|#x[0-9a-fA-F]+);)"_s);
    return xmlText(textOf(packet)).replace(bare, u"&amp;"_s).toStdString();
}

/// Removes our commands, which the library leaves in lists, and the two line ends that it puts before texts
/// whose old names it reads as Dublin Core (xmpDM:copyright as dc:rights).
void restoreTexts(Exiv2::XmpData &xmp)
{
    for (Exiv2::Xmpdatum &datum : xmp) {
        if (const auto *list = dynamic_cast<const Exiv2::XmpArrayValue *>(&datum.value())) {
            Exiv2::XmpArrayValue changed(list->typeId());
            for (long i = 0; i < list->count(); ++i) {
                std::string text = list->toString(i);
                withoutXmpCommand(text);
                changed.read(text);
            }
            datum.setValue(&changed);
        } else if (const auto *texts = dynamic_cast<const Exiv2::LangAltValue *>(&datum.value())) {
            Exiv2::LangAltValue changed = *texts;
            for (auto &[language, text] : changed.value_) {
                withoutXmpCommand(text);
                if (datum.groupName() == "dc" && text.starts_with("\n\n"))
                    text.erase(0, 2);
            }
            datum.setValue(&changed);
        }
    }
}

/// @return none when the library refuses the packet
std::optional<Exiv2::XmpData> decodedByLibrary(const std::string &packet, XmpNamespaces &namespaces)
{
    const std::string understood = namespaces.packetForLibrary(packet);
    try {
        Exiv2::XmpData xmp;
        const auto lock = lockXmpNamespaces();
        if (understood.empty() || Exiv2::XmpParser::decode(xmp, understood) != 0)
            return {};
        restoreTexts(xmp);
        return xmp;
    } catch (const std::exception &) {
        return {};
    }
}

Exiv2::XmpData decodedPacket(const std::string &packet, XmpNamespaces &namespaces, QStringList *omitted)
{
    const bool isBlank = packet.find_first_not_of(" \t\r\n\0"sv) == packet.npos;
    if (isBlank)
        return {};
    if (packet.size() <= static_cast<size_t>(kMaxMetadataBytes)) {
        if (auto xmp = decodedByLibrary(packet, namespaces))
            return *std::move(xmp);
        const std::string repaired = repairedPacket(QByteArray::fromStdString(packet));
        if (auto xmp = repaired == packet ? std::nullopt : decodedByLibrary(repaired, namespaces))
            return *std::move(xmp);
    }
    if (omitted && !omitted->contains(u"XMP"_s))
        omitted->append(u"XMP"_s);
    return {};
}

/// @return none where the library refuses a property
std::optional<QByteArray> encodedByLibrary(const Exiv2::XmpData &xmp)
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

DecodedXmp decodedXmp(const MetadataSet &set, QStringList *omitted)
{
    DecodedXmp xmp;
    xmp.data = decodedPacket(set.xmpPacket, xmp.namespaces, omitted);
    const Exiv2::XmpData more = decodedPacket(set.moreXmpPacket, xmp.namespaces, omitted);
    std::set<std::string> keys;
    for (const Exiv2::Xmpdatum &datum : xmp.data)
        keys.insert(datum.key());
    for (const Exiv2::Xmpdatum &datum : more) {
        if (keys.insert(datum.key()).second)
            xmp.data.add(datum);
    }
    return xmp;
}

QByteArray encodedXmp(const DecodedXmp &xmp, QStringList &omitted)
{
    if (xmp.data.empty())
        return {};
    if (const auto packet = encodedByLibrary(xmp.data))
        return xmp.namespaces.packetForFile(*packet);
    std::map<std::string, Exiv2::XmpData> byName;
    for (const Exiv2::Xmpdatum &datum : xmp.data)
        byName[topName(datum, xmp.namespaces)].add(datum);
    Exiv2::XmpData rest;
    QStringList refused;
    for (const auto &[name, property] : byName) {
        if (!encodedByLibrary(property)) {
            refused += QStringLiteral("XMP ") + QString::fromStdString(name);
            continue;
        }
        for (const Exiv2::Xmpdatum &datum : property)
            rest.add(datum);
    }
    const auto packet = encodedByLibrary(rest);
    if (!packet || refused.empty() || rest.empty()) {
        omitted += QStringLiteral("XMP");
        return {};
    }
    omitted += refused;
    return xmp.namespaces.packetForFile(*packet);
}

} // namespace plexa

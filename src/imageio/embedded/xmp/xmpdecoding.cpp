// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/xmp/xmpdecoding.h"

#include "imageio/embedded/exif/exiv2setup.h"
#include "imageio/embedded/metadatablocks.h"
#include "imageio/embedded/metadataset.h"
#include "metadata/metadatatext.h"

#include <QRegularExpression>

#include <algorithm>
#include <memory>
#include <optional>
#include <set>
#include <string_view>

namespace plexa
{

namespace
{

using namespace Qt::Literals::StringLiterals;

// The XML is walked recursively by the library; real packets nest less than twenty elements.
constexpr int kMaxXmlDepth = 200;

// The library looks for each property among all others, so that its time grows with the square: this many
// take a third of a second.
constexpr int kMaxXmlNames = 5000;

struct XmlTag {
    size_t end = std::string_view::npos; ///< of its '>'
    int names = 1;                       ///< of the element and its attributes
    bool isClosed = false;
};

XmlTag tagAt(std::string_view xml, size_t at)
{
    XmlTag tag;
    char quote = '\0';
    for (size_t i = at + 1; i < xml.size(); ++i) {
        const char byte = xml[i];
        if (quote != '\0') {
            if (byte == quote)
                quote = '\0';
        } else if (byte == '"' || byte == '\'') {
            quote = byte;
        } else if (byte == '=') {
            ++tag.names;
        } else if (byte == '>') {
            tag.end = i;
            tag.isClosed = xml[i - 1] == '/';
            break;
        }
    }
    return tag;
}

bool isWideText(std::string_view xml)
{
    return xml.find('\0') < xml.find_last_not_of('\0') && xml.find_last_not_of('\0') != xml.npos;
}

/// Measures the XML without decoding it. In texts of several bytes a character every '<' counts as one more
/// element inside of the others.
class XmlMeasure
{
public:
    /// @return false when this packet, or the packets so far, nest too deeply or name too much
    bool accepts(std::string_view xml)
    {
        const bool isWide = isWideText(xml);
        m_depth = 0;
        for (size_t at = xml.find('<'); at != xml.npos; at = xml.find('<', at)) {
            const std::string_view rest = xml.substr(at);
            if (isWide) {
                if (++m_depth > kMaxXmlDepth)
                    return false;
                ++at;
            } else if (rest.starts_with("<!--")) {
                at = xml.find("-->", at + 4);
            } else if (rest.starts_with("<![CDATA[")) {
                at = xml.find("]]>", at + 9);
            } else if (rest.starts_with("<!")) {
                return false; // a document type: its entities may expand to any amount of XML
            } else if (rest.starts_with("<?")) {
                at = xml.find("?>", at + 2);
            } else if (rest.starts_with("</")) {
                --m_depth;
                ++at;
            } else if (!enter(tagAt(xml, at), at)) {
                return false;
            }
            if (at == xml.npos)
                break;
        }
        return true;
    }

private:
    bool enter(const XmlTag &tag, size_t &at)
    {
        at = tag.end;
        m_names += tag.names;
        if (++m_depth > kMaxXmlDepth || m_names > kMaxXmlNames)
            return false;
        if (tag.isClosed)
            --m_depth;
        return true;
    }

    int m_depth = 0;
    int m_names = 0;
};

bool isAcceptable(const std::string &packet, XmlMeasure &measure)
{
    return packet.size() <= static_cast<size_t>(kMaxMetadataBytes) && measure.accepts(packet);
}

/// The text of a packet that is no UTF-8. Each run of letters beyond ASCII is judged alone: programs paste
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

/// A packet that the library refuses, without the two faults that programs are known for: bytes that are no
/// UTF-8 (read as Windows-1252), and "&" that begins no reference.
std::string repairedPacket(const QByteArray &packet)
{
    static const QRegularExpression bare(u"&(?!(amp|lt|gt|quot|apos|#[0-9]+|#x[0-9a-fA-F]+);)"_s);
    return textOf(packet).replace(bare, u"&amp;"_s).toStdString();
}

void restoreTexts(Exiv2::XmpData &xmp)
{
    for (Exiv2::Xmpdatum &datum : xmp) {
        // The library looks for commands in plain texts alone, so texts in lists still have ours.
        const auto *list = dynamic_cast<const Exiv2::XmpArrayValue *>(&datum.value());
        const auto *texts = dynamic_cast<const Exiv2::LangAltValue *>(&datum.value());
        if (list) {
            auto changed = std::make_unique<Exiv2::XmpArrayValue>(list->typeId());
            for (long i = 0; i < list->count(); ++i) {
                std::string text = list->toString(i);
                withoutXmpCommand(text);
                changed->read(text);
            }
            datum.setValue(changed.get());
        } else if (texts) {
            Exiv2::LangAltValue changed = *texts;
            for (auto &[language, text] : changed.value_)
                withoutXmpCommand(text);
            datum.setValue(&changed);
        }
    }
}

/// The library reads some old names as Dublin Core (xmpDM:copyright as dc:rights) and puts two line ends
/// before their texts.
void removeBreaksOfAliases(Exiv2::XmpData &xmp)
{
    for (Exiv2::Xmpdatum &datum : xmp) {
        const auto *texts = dynamic_cast<const Exiv2::LangAltValue *>(&datum.value());
        if (!texts || datum.groupName() != "dc")
            continue;
        Exiv2::LangAltValue changed = *texts;
        for (auto &[language, text] : changed.value_) {
            if (text.compare(0, 2, "\n\n") == 0)
                text.erase(0, 2);
        }
        datum.setValue(&changed);
    }
}

/// @return none when the library refuses the packet
std::optional<Exiv2::XmpData> attemptedPacket(const std::string &packet, XmpNamespaces &namespaces)
{
    const std::string understood = namespaces.packetForLibrary(packet);
    try {
        Exiv2::XmpData xmp;
        const auto lock = lockXmpNamespaces();
        if (Exiv2::XmpParser::decode(xmp, understood) != 0)
            return {};
        if (understood != packet)
            restoreTexts(xmp);
        removeBreaksOfAliases(xmp);
        return xmp;
    } catch (const std::exception &) {
        return {};
    }
}

bool isBlank(const std::string &packet)
{
    return packet.find_first_not_of(std::string_view(" \t\r\n\0", 5)) == packet.npos;
}

Exiv2::XmpData decodedPacket(const std::string &packet, XmlMeasure &measure, XmpNamespaces &namespaces,
                             QStringList *omitted)
{
    if (isBlank(packet))
        return {};
    if (isAcceptable(packet, measure)) {
        if (auto xmp = attemptedPacket(packet, namespaces))
            return *std::move(xmp);
        const std::string repaired = repairedPacket(QByteArray::fromStdString(packet));
        if (auto xmp = repaired == packet ? std::nullopt : attemptedPacket(repaired, namespaces))
            return *std::move(xmp);
    }
    if (omitted && !omitted->contains(u"XMP"_s))
        omitted->append(u"XMP"_s);
    return {};
}

} // namespace

DecodedXmp decodedXmp(const MetadataSet &set, QStringList *omitted)
{
    XmlMeasure measure;
    DecodedXmp xmp;
    xmp.data = decodedPacket(set.xmpPacket, measure, xmp.namespaces, omitted);
    const Exiv2::XmpData more = decodedPacket(set.moreXmpPacket, measure, xmp.namespaces, omitted);
    std::set<std::string> keys;
    for (const Exiv2::Xmpdatum &datum : xmp.data)
        keys.insert(datum.key());
    for (const Exiv2::Xmpdatum &datum : more) {
        if (keys.insert(datum.key()).second)
            xmp.data.add(datum);
    }
    return xmp;
}

} // namespace plexa

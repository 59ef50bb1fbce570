// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/xmp/xmpnamespaces.h"

#include <QCryptographicHash>
#include <QSet>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <exiv2/exiv2.hpp>

#include <algorithm>

namespace plexa
{

namespace
{

using namespace Qt::Literals::StringLiterals;

struct KnownNamespace {
    const char *prefix;
    const char *address;
};

// What phones, photo managers and lens databases write and the library does not know by itself.
constexpr KnownNamespace kNamespaces[] = {
    {"hdrgm", "http://ns.adobe.com/hdr-gain-map/1.0/"},
    {"HDRGainMap", "http://ns.apple.com/HDRGainMap/1.0/"},
    {"apdi", "http://ns.apple.com/pixeldatainfo/1.0/"},
    {"apple-fi", "http://ns.apple.com/faceinfo/1.0/"},
    {"Container", "http://ns.google.com/photos/1.0/container/"},
    {"Item", "http://ns.google.com/photos/1.0/container/item/"},
    {"GCamera", "http://ns.google.com/photos/1.0/camera/"},
    {"GImage", "http://ns.google.com/photos/1.0/image/"},
    {"GAudio", "http://ns.google.com/photos/1.0/audio/"},
    {"GDepth", "http://ns.google.com/photos/1.0/depthmap/"},
    {"exifEX", "http://cipa.jp/exif/1.0/"},
    {"drone-dji", "http://www.dji.com/drone-dji/1.0/"},
    {"acdsee-rs", "http://ns.acdsee.com/regions/"},
    {"ics", "http://ns.idimager.com/ics/1.0/"},
    {"geo", "http://www.w3.org/2003/01/geo/wgs84_pos#"},
};

/// The library appends a slash to addresses without one of these ends.
bool isKeptByLibrary(const QString &address)
{
    return address.endsWith(u'/') || address.endsWith(u'#');
}

/// The namespaces that the library knows before any packet is read, by prefix; no two have one address.
const QHash<QString, QString> &knownNamespaces()
{
    static const QHash<QString, QString> known = [] {
        Exiv2::Dictionary dictionary; // by prefix
        Exiv2::XmpProperties::registeredNamespaces(dictionary);
        for (const KnownNamespace &entry : kNamespaces)
            dictionary[entry.prefix] = entry.address;
        dictionary["x"] = "adobe:ns:meta/";
        QHash<QString, QString> namespaces;
        for (const auto &[prefix, address] : dictionary)
            namespaces.insert(QString::fromStdString(prefix), QString::fromStdString(address));
        namespaces.removeIf(
            [](const auto &entry) { return entry.key() != u"xml" && !isKeptByLibrary(entry.value()); });
        return namespaces;
    }();
    return known;
}

/// The prefix of a known address; null: the address is not known.
QString knownPrefix(const QString &address)
{
    static const QHash<QString, QString> prefixes = [] {
        QHash<QString, QString> byAddress;
        for (auto known = knownNamespaces().begin(); known != knownNamespaces().end(); ++known)
            byAddress.insert(known.value(), known.key());
        return byAddress;
    }();
    return prefixes.value(address);
}

bool isKnown(const QString &prefix, const QString &address)
{
    return knownNamespaces().contains(prefix) && knownNamespaces().value(prefix) == address;
}

constexpr char kAliasMark[] = "plexa-";
constexpr qsizetype kAliasBytes = 6 + 16;

QByteArray aliasOf(const QString &address)
{
    return kAliasMark +
           QCryptographicHash::hash(address.toUtf8(), QCryptographicHash::Sha256).toHex().first(16);
}

/// Empty: the library does not know the prefix.
std::string addressInLibrary(const std::string &prefix)
{
    try {
        return Exiv2::XmpProperties::ns(prefix);
    } catch (const std::exception &) {
        return {};
    }
}

/// An empty command, after which the library reads the rest as text.
const QString kNoCommand = u"type=\"\" "_s;

/// A rough look: true for a packet that needs no rewriting costs time only.
bool needsRewriting(const QByteArray &packet)
{
    if (packet.contains(">type=") || packet.contains("\"type=") || packet.contains("'type="))
        return true;
    for (qsizetype at = packet.indexOf("xmlns"); at >= 0; at = packet.indexOf("xmlns", at + 1)) {
        const qsizetype equals = packet.indexOf('=', at);
        if (equals < 0)
            return false;
        qsizetype open = equals + 1;
        while (open < packet.size() && packet[open] != '"' && packet[open] != '\'')
            ++open;
        const qsizetype close = open < packet.size() ? packet.indexOf(packet[open], open + 1) : -1;
        if (close < 0)
            return false;
        const QByteArray prefix = packet.mid(at + 6, equals - at - 6).trimmed();
        const QByteArray address = packet.mid(open + 1, close - open - 1);
        if (!isKnown(QString::fromUtf8(prefix), QString::fromUtf8(address)))
            return true;
    }
    return false;
}

} // namespace

/// Rewrites a packet with the library's prefixes and addresses.
class XmpPacketWriter
{
public:
    explicit XmpPacketWriter(XmpNamespaces &namespaces)
        : m_namespaces(namespaces)
        , m_writer(&m_result)
    {
    }

    /// @return empty when this is no XML
    QByteArray rewritten(const QByteArray &packet)
    {
        QXmlStreamReader reader(packet);
        while (!reader.atEnd()) {
            switch (reader.readNext()) {
            case QXmlStreamReader::StartElement:
                startElement(reader);
                break;
            case QXmlStreamReader::EndElement:
                m_writer.writeEndElement();
                break;
            case QXmlStreamReader::Characters:
                m_writer.writeCharacters(asText(reader.text()));
                m_isAtStart = m_isAtStart && reader.isWhitespace();
                break;
            case QXmlStreamReader::ProcessingInstruction:
                m_writer.writeProcessingInstruction(reader.processingInstructionTarget().toString(),
                                                    reader.processingInstructionData().toString());
                break;
            default:
                break;
            }
        }
        return reader.hasError() ? QByteArray() : m_result;
    }

private:
    void startElement(const QXmlStreamReader &reader)
    {
        m_isAtStart = true;
        m_writer.writeCharacters(QString()); // else namespaces get into the tag before
        QSet<QString> declared;
        for (const QXmlStreamNamespaceDeclaration &declaration : reader.namespaceDeclarations()) {
            const auto [prefix, address] = m_namespaces.forLibrary(declaration.prefix().toString(),
                                                                   declaration.namespaceUri().toString());
            m_addresses.insert(declaration.namespaceUri().toString(), address);
            if (!address.isEmpty() && !declared.contains(prefix))
                m_writer.writeNamespace(address, prefix);
            declared.insert(prefix);
        }
        m_writer.writeStartElement(addressOf(reader.namespaceUri()), reader.name().toString());
        for (const QXmlStreamAttribute &attribute : reader.attributes())
            m_writer.writeAttribute(addressOf(attribute.namespaceUri()), attribute.name().toString(),
                                    asText(attribute.value(), true));
    }

    QString addressOf(QStringView address) const
    {
        return m_addresses.value(address.toString(), address.toString());
    }

    QString asText(QStringView text, bool isAttribute = false) const
    {
        const bool isCommand = text.startsWith(u"type="_s) && (isAttribute || m_isAtStart);
        return isCommand ? kNoCommand + text.toString() : text.toString();
    }

    XmpNamespaces &m_namespaces;
    QByteArray m_result;
    QXmlStreamWriter m_writer;
    QHash<QString, QString> m_addresses; ///< the library's by the file's
    bool m_isAtStart = true;
};

void registerXmpNamespaces()
{
    knownNamespaces(); // before any packet changes the table
    restoreXmpNamespaces();
}

void restoreXmpNamespaces()
{
    QByteArray declarations;
    for (auto known = knownNamespaces().begin(); known != knownNamespaces().end(); ++known) {
        const std::string prefix = known.key().toStdString();
        const std::string address = known.value().toStdString();
        if (prefix == "xml" || prefix == "x" || prefix == "rdf") // no properties
            continue;
        // The library has names of its own for some ("iptc").
        for (const std::string &name : {prefix, Exiv2::XmpProperties::prefix(address)}) {
            if (const std::string bound = addressInLibrary(name); bound != address)
                Exiv2::XmpProperties::unregisterNs(bound);
        }
        if (Exiv2::XmpProperties::prefix(address).empty())
            Exiv2::XmpProperties::registerNs(address, prefix);
        declarations += " xmlns:" + known.key().toUtf8() + "=\"" + known.value().toUtf8() + '"';
    }
    // Below that table the library has another one, which each declaration that it reads changes.
    const QByteArray packet = "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">"
                              "<rdf:Description rdf:about=\"\"" +
                              declarations + "/></rdf:RDF>";
    Exiv2::XmpData none;
    Exiv2::XmpParser::decode(none, packet.toStdString());
}

std::string XmpNamespaces::packetForLibrary(const std::string &packet)
{
    const QByteArray bytes = QByteArray::fromRawData(packet.data(), qsizetype(packet.size()));
    if (!needsRewriting(bytes))
        return packet;
    const QByteArray rewritten = XmpPacketWriter(*this).rewritten(bytes);
    return rewritten.isEmpty() ? packet : rewritten.toStdString();
}

XmpNamespaces::Namespace XmpNamespaces::forLibrary(const QString &prefix, const QString &address)
{
    if (const QString known = knownPrefix(address); !known.isNull() || address.isEmpty())
        return {known, address};
    const QByteArray alias = aliasOf(address);
    if (!m_byAlias.contains(alias)) {
        QString own = prefix.isEmpty() ? u"ns"_s : prefix;
        const bool isTaken = knownNamespaces().contains(own) ||
                             std::any_of(m_byAlias.begin(), m_byAlias.end(),
                                         [&own](const Namespace &other) { return other.prefix == own; });
        if (isTaken)
            own += u'-' + QString::fromLatin1(alias.sliced(qstrlen(kAliasMark), 8));
        m_byAlias.insert(alias, {own, address});
    }
    const QString name = QString::fromLatin1(alias);
    return {name, name + u'/'};
}

QByteArray XmpNamespaces::packetForFile(const QByteArray &encoded) const
{
    QByteArray packet;
    qsizetype copied = 0;
    for (qsizetype at = encoded.indexOf(kAliasMark); at >= 0; at = encoded.indexOf(kAliasMark, at + 1)) {
        const auto own = m_byAlias.constFind(encoded.mid(at, kAliasBytes));
        if (own == m_byAlias.constEnd())
            continue;
        const bool isAddress = encoded.mid(at + kAliasBytes, 1) == "/";
        packet += encoded.sliced(copied, at - copied);
        packet += isAddress ? own->address.toHtmlEscaped().toUtf8() : own->prefix.toUtf8();
        copied = at + kAliasBytes + (isAddress ? 1 : 0);
    }
    return packet + encoded.sliced(copied);
}

QString XmpNamespaces::prefixOf(const std::string &libraryPrefix) const
{
    const auto own = m_byAlias.constFind(QByteArray::fromStdString(libraryPrefix));
    return own == m_byAlias.constEnd() ? QString::fromStdString(libraryPrefix) : own->prefix;
}

std::string XmpNamespaces::addressOf(const std::string &libraryPrefix) const
{
    const auto own = m_byAlias.constFind(QByteArray::fromStdString(libraryPrefix));
    return (own == m_byAlias.constEnd() ? knownNamespaces().value(QString::fromStdString(libraryPrefix))
                                        : own->address)
        .toStdString();
}

void withoutXmpCommand(std::string &text)
{
    static const std::string command = kNoCommand.toStdString();
    if (text.compare(0, command.size() + 5, command + "type=") == 0)
        text.erase(0, command.size());
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/xmp/xmpnamespaces.h"

#include "imageio/embedded/exif/exiv2setup.h"
#include "platform/xmlbounds.h"

#include <QCryptographicHash>
#include <QSet>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <algorithm>

namespace plexa
{

namespace
{

using namespace Qt::Literals::StringLiterals;

// The library walks the XML recursively; real packets nest less than twenty elements.
constexpr int kMaxDepth = 200;

// The library searches all properties for each one, so that its time grows with the square: this many need a
// third of a second.
constexpr int kMaxNames = 5000;

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

constexpr char kAliasMark[] = "plexa-";
constexpr qsizetype kAliasBytes = 6 + 16;

QByteArray aliasOf(const QString &address)
{
    return kAliasMark +
           QCryptographicHash::hash(address.toUtf8(), QCryptographicHash::Sha256).toHex().first(16);
}

/// An empty command, after which the library reads the rest as text.
const QString kNoCommand = u"type=\"\" "_s;

} // namespace

/// Rewrites a packet with the library's prefixes and addresses.
class XmpPacketWriter
{
public:
    explicit XmpPacketWriter(XmpNamespaces &namespaces)
        : m_namespaces(namespaces)
        , m_writer(&m_result)
        , m_names(namespaces.m_names)
    {
    }

    /// @return empty for invalid XML and beyond the limits
    QByteArray rewritten(const QByteArray &packet)
    {
        const Result<QByteArray> bounded = boundedXml(packet, kMaxNames, kMaxNames);
        if (!bounded)
            return {};
        QXmlStreamReader reader(*bounded);
        while (!reader.atEnd()) {
            switch (reader.readNext()) {
            case QXmlStreamReader::StartElement:
                m_names += 1 + reader.attributes().size();
                if (++m_depth > kMaxDepth || m_names > kMaxNames)
                    return {};
                startElement(reader);
                break;
            case QXmlStreamReader::EndElement:
                --m_depth;
                m_writer.writeEndElement();
                break;
            case QXmlStreamReader::Characters:
                writeText(asText(reader.text()));
                m_isAtStart = m_isAtStart && reader.isWhitespace();
                break;
            case QXmlStreamReader::ProcessingInstruction:
                m_writer.writeProcessingInstruction(reader.processingInstructionTarget().toString(),
                                                    reader.processingInstructionData().toString());
                break;
            case QXmlStreamReader::DTD: // its entities may expand to any amount of XML
                return {};
            default:
                break;
            }
        }
        if (reader.hasError())
            return {};
        m_namespaces.m_names = m_names;
        return m_result;
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

    /// A carriage return stays one only as a reference.
    void writeText(const QString &text)
    {
        const QStringList lines = text.split(u'\r');
        m_writer.writeCharacters(lines.constFirst());
        for (const QString &line : lines.sliced(1)) {
            m_writer.writeEntityReference(u"#xD"_s);
            m_writer.writeCharacters(line);
        }
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
    int m_depth = 0;
    qsizetype m_names;
};

std::string XmpNamespaces::packetForLibrary(const std::string &packet)
{
    return XmpPacketWriter(*this).rewritten(QByteArray::fromStdString(packet)).toStdString();
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

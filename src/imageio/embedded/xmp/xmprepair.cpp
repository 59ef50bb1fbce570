// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/xmp/xmprepair.h"

#include "imageio/embedded/xmp/xmppackets.h"
#include "metadata/metadatatext.h"

#include <QRegularExpression>
#include <QSet>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <algorithm>
#include <memory>

namespace plexa
{

namespace
{

using namespace Qt::Literals::StringLiterals;

constexpr QLatin1StringView kRdf("http://www.w3.org/1999/02/22-rdf-syntax-ns#");
constexpr QLatin1StringView kXml("http://www.w3.org/XML/1998/namespace");
constexpr QLatin1StringView kUndeclared("undeclared:"); // in front of a prefix

/// Each run of letters beyond ASCII is judged alone: programs paste one encoding into the other.
QString textOf(const QByteArray &packet)
{
    if (packet.isValidUtf8())
        return QString::fromUtf8(packet);
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

/// Of a reference to a character, or of an entity: what may stand there in its place.
QString mendedReference(const QRegularExpressionMatch &reference)
{
    const QString number = reference.captured(u"number"_s);
    if (number.isEmpty())
        return reference.hasCaptured(u"name"_s) || !reference.captured().startsWith(u'&')
                   ? reference.captured()
                   : u"&amp;"_s + reference.captured().mid(1);
    bool isNumber = false;
    const char32_t code =
        number.startsWith(u'x') ? number.mid(1).toUInt(&isNumber, 16) : number.toUInt(&isNumber);
    const bool isAllowed =
        isNumber && code <= QChar::LastValidCodePoint && !xmlText(QString::fromUcs4(&code, 1)).isEmpty();
    return isAllowed ? reference.captured() : QString();
}

QString withMendedReferences(const QString &xml)
{
    // In front of the references what is to be left as it is.
    static const QRegularExpression form(
        u"<!--[\\s\\S]*?-->|<!\\[CDATA\\[[\\s\\S]*?\\]\\]>|"
        "&(?:(?<name>amp|lt|gt|quot|apos);|#(?<number>x[0-9a-fA-F]{1,8}|[0-9]{1,10});)?"_s);
    QString mended;
    qsizetype at = 0;
    for (auto found = form.globalMatch(xml); found.hasNext();) {
        const QRegularExpressionMatch match = found.next();
        mended += QStringView(xml).mid(at, match.capturedStart() - at);
        mended += mendedReference(match);
        at = match.capturedEnd();
    }
    return mended + xml.mid(at);
}

/// The prefixes of all names. Those that programs agree on stand for what they always do.
QXmlStreamNamespaceDeclarations declarationsFor(const QString &xml)
{
    static const QRegularExpression form(u"[<\\s]([A-Za-z_][\\w.-]*):(?=[A-Za-z_])"_s);
    QSet<QString> prefixes;
    for (auto found = form.globalMatch(xml); found.hasNext();)
        prefixes.insert(found.next().captured(1));
    prefixes -= {u"xml"_s, u"xmlns"_s};
    QXmlStreamNamespaceDeclarations declarations;
    for (const QString &prefix : prefixes) {
        const QString uri = knownXmpNamespaces().value(prefix, kUndeclared + prefix);
        declarations.append({prefix, uri});
    }
    return declarations;
}

/// Writes the RDF of a packet anew, without what does not belong there.
class RdfWriter
{
public:
    explicit RdfWriter(const QString &xml)
        : m_reader(xml)
        , m_writer(&m_result.packet)
    {
        m_reader.addExtraNamespaceDeclarations(declarationsFor(xml));
    }

    RepairedXmp rewritten()
    {
        while (!m_reader.atEnd()) {
            const auto token = m_reader.readNext();
            if (token == QXmlStreamReader::StartElement) {
                startElement();
            } else if (token == QXmlStreamReader::EndElement) {
                m_writer.writeEndElement();
                m_open.removeLast();
            } else if (token == QXmlStreamReader::Characters) {
                m_writer.writeCharacters(m_reader.text().toString());
            }
        }
        m_result.dropped.removeDuplicates();
        return m_reader.hasError() ? RepairedXmp() : m_result;
    }

private:
    /// What may stand in an element.
    struct Element {
        enum Kind { Outside, Nodes, Properties, Items } kind = Outside;
        QSet<QString> *names = nullptr; ///< of the properties so far
        std::shared_ptr<QSet<QString>> ownNames;
    };

    bool isRdf(QLatin1StringView name) const
    {
        return m_reader.namespaceUri() == kRdf && m_reader.name() == name;
    }

    bool isList() const { return isRdf("Bag"_L1) || isRdf("Seq"_L1) || isRdf("Alt"_L1); }

    void startElement()
    {
        const Element parent = m_open.isEmpty() ? Element() : m_open.constLast();
        if (!belongsInto(parent)) {
            drop(m_reader.qualifiedName());
            m_reader.skipCurrentElement();
            return;
        }
        const QXmlStreamAttributes attributes = m_reader.attributes();
        const auto parseType = attributes.value(kRdf, "parseType"_L1);
        Element element = elementIn(parent);
        if (parseType == "Resource"_L1)
            element.kind = Element::Properties;
        if (element.kind == Element::Properties && !element.names) {
            element.ownNames = std::make_shared<QSet<QString>>();
            element.names = element.ownNames.get();
        }
        m_writer.writeCharacters(QString()); // else namespaces get into the tag before
        for (const QXmlStreamNamespaceDeclaration &declared : m_reader.namespaceDeclarations())
            m_writer.writeNamespace(declared.namespaceUri().toString(), declared.prefix().toString());
        m_writer.writeStartElement(m_reader.namespaceUri().toString(), m_reader.name().toString());
        const bool isLiteral = parseType == "Literal"_L1;
        for (const QXmlStreamAttribute &attribute : attributes)
            putAttribute(attribute, element, isLiteral);
        if (isLiteral) {
            m_writer.writeCharacters(m_reader.readElementText(QXmlStreamReader::IncludeChildElements));
            m_writer.writeEndElement();
        } else {
            m_open.append(element);
        }
    }

    bool belongsInto(const Element &parent)
    {
        if (m_reader.namespaceUri().startsWith(kUndeclared))
            return false;
        if (parent.kind == Element::Items)
            return isRdf("li"_L1);
        if (parent.kind != Element::Properties)
            return true;
        const bool isOfLists = isList() || isRdf("li"_L1) || isRdf("Description"_L1);
        return !isOfLists && isFirst(m_reader.namespaceUri(), m_reader.name(), parent);
    }

    static bool isFirst(QStringView uri, QStringView name, const Element &parent)
    {
        const QString whole = uri.toString() + u' ' + name.toString();
        if (parent.names->contains(whole))
            return false;
        parent.names->insert(whole);
        return true;
    }

    Element elementIn(const Element &parent)
    {
        if (isRdf("RDF"_L1))
            return {Element::Nodes, &m_names, {}}; // its descriptions speak of one thing
        if (isList())
            return {Element::Items, nullptr, {}};
        if (parent.kind == Element::Nodes)
            return {Element::Properties, parent.names, {}};
        return {parent.kind == Element::Outside ? Element::Outside : Element::Nodes, nullptr, {}};
    }

    void putAttribute(const QXmlStreamAttribute &attribute, const Element &element, bool isLiteral)
    {
        const QStringView uri = attribute.namespaceUri();
        const bool isGrammar = uri.isEmpty() || uri == kRdf || uri == kXml;
        if (isLiteral && uri == kRdf && attribute.name() == "parseType"_L1)
            return;
        if (uri.startsWith(kUndeclared) ||
            (element.kind == Element::Properties && !isGrammar && !isFirst(uri, attribute.name(), element)))
            drop(attribute.qualifiedName());
        else
            m_writer.writeAttribute(uri.toString(), attribute.name().toString(),
                                    attribute.value().toString());
    }

    void drop(QStringView name) { m_result.dropped += u"XMP "_s + name.toString(); }

    QXmlStreamReader m_reader;
    RepairedXmp m_result;
    QXmlStreamWriter m_writer;
    QList<Element> m_open;
    QSet<QString> m_names; ///< of all descriptions at the top
};

} // namespace

RepairedXmp repairedXmp(const QByteArray &packet)
{
    if (packet.count('\0') > packet.size() / 8) // UTF-16, whose texts would be gone
        return {};
    return RdfWriter(withMendedReferences(xmlText(textOf(packet)))).rewritten();
}

} // namespace plexa

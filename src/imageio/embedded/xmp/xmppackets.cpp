// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/xmp/xmppackets.h"

#include <QByteArray>
#include <QCryptographicHash>
#include <QHash>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace plexa
{

namespace
{

using namespace Qt::Literals::StringLiterals;

/// An empty command, behind which the library takes the rest for the text.
const QString kNoCommand = QStringLiteral("type=\"\" ");

bool isClash(QStringView prefix, QStringView uri)
{
    const auto known = knownXmpNamespaces().constFind(prefix.toString());
    return known != knownXmpNamespaces().constEnd() && *known != uri;
}

/// Writes a packet anew, with prefixes that clash with nothing.
class PacketWriter
{
public:
    /// @return empty when this is no XML
    QByteArray rewritten(const QByteArray &packet)
    {
        QXmlStreamReader reader(packet);
        QByteArray result;
        QXmlStreamWriter writer(&result);
        while (!reader.atEnd()) {
            switch (reader.readNext()) {
            case QXmlStreamReader::StartElement:
                startElement(writer, reader);
                break;
            case QXmlStreamReader::EndElement:
                writer.writeEndElement();
                break;
            case QXmlStreamReader::Characters:
                writer.writeCharacters(asText(reader.text()));
                m_isAtStart = m_isAtStart && reader.isWhitespace();
                break;
            case QXmlStreamReader::ProcessingInstruction:
                writer.writeProcessingInstruction(reader.processingInstructionTarget().toString(),
                                                  reader.processingInstructionData().toString());
                break;
            default:
                break;
            }
        }
        return reader.hasError() ? QByteArray() : result;
    }

private:
    void startElement(QXmlStreamWriter &writer, const QXmlStreamReader &reader)
    {
        m_isAtStart = true;
        writer.writeCharacters(QString()); // else namespaces get into the tag before
        for (const QXmlStreamNamespaceDeclaration &declared : reader.namespaceDeclarations())
            writer.writeNamespace(declared.namespaceUri().toString(),
                                  prefixFor(declared.prefix(), declared.namespaceUri()));
        writer.writeStartElement(reader.namespaceUri().toString(), reader.name().toString());
        for (const QXmlStreamAttribute &attribute : reader.attributes())
            writer.writeAttribute(attribute.namespaceUri().toString(), attribute.name().toString(),
                                  asText(attribute.value(), true));
    }

    QString asText(QStringView text, bool isAttribute = false) const
    {
        const bool isCommand = text.startsWith(u"type="_s) && (isAttribute || m_isAtStart);
        return isCommand ? kNoCommand + text.toString() : text.toString();
    }

    /// One for each namespace, where a packet binds the same one again and again, too. What is made here is
    /// the same for the same namespace in every packet and every run.
    QString prefixFor(QStringView prefix, QStringView uri)
    {
        if (!m_bound.contains(prefix.toString()))
            m_bound.insert(prefix.toString(), uri.toString());
        if (m_bound.value(prefix.toString()) == uri && !isClash(prefix, uri))
            return prefix.toString();
        const QByteArray hash = QCryptographicHash::hash(uri.toUtf8(), QCryptographicHash::Sha256).toHex();
        return prefix.toString() + u'-' + QString::fromLatin1(hash.first(8));
    }

    bool m_isAtStart = true;
    QHash<QString, QString> m_bound; // namespaces by the prefixes that were first to stand for them
};

/// Looks only roughly: true for a packet that needs nothing costs time, nothing else.
bool needsRewriting(const QByteArray &packet)
{
    if (packet.contains(">type=") || packet.contains("\"type=") || packet.contains("'type="))
        return true;
    QHash<QByteArray, QByteArray> bound;
    for (qsizetype at = packet.indexOf("xmlns:"); at >= 0; at = packet.indexOf("xmlns:", at + 1)) {
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
        const QByteArray uri = packet.mid(open + 1, close - open - 1);
        const auto first = bound.constFind(prefix);
        if (first == bound.constEnd())
            bound.insert(prefix, uri);
        else if (*first != uri)
            return true;
        if (isClash(QString::fromUtf8(prefix), QString::fromUtf8(uri)))
            return true;
    }
    return false;
}

void restore(std::string &text)
{
    const std::string command = kNoCommand.toStdString();
    if (text.compare(0, command.size() + 5, command + "type=") == 0)
        text.erase(0, command.size());
}

} // namespace

const QHash<QString, QString> &knownXmpNamespaces()
{
    static const QHash<QString, QString> known = [] {
        Exiv2::Dictionary dictionary; // by prefix
        Exiv2::XmpProperties::registeredNamespaces(dictionary);
        QHash<QString, QString> namespaces;
        for (const auto &[prefix, uri] : dictionary)
            namespaces.insert(QString::fromStdString(prefix), QString::fromStdString(uri));
        return namespaces;
    }();
    return known;
}

std::string packetForLibrary(const std::string &packet)
{
    const QByteArray bytes = QByteArray::fromRawData(packet.data(), qsizetype(packet.size()));
    if (!needsRewriting(bytes))
        return packet;
    const QByteArray rewritten = PacketWriter().rewritten(bytes);
    return rewritten.isEmpty() ? packet : rewritten.toStdString();
}

void restoreTexts(Exiv2::XmpData &xmp)
{
    for (Exiv2::Xmpdatum &datum : xmp) {
        // What stands in lists is not looked through for commands, and so still has ours.
        const auto *list = dynamic_cast<const Exiv2::XmpArrayValue *>(&datum.value());
        const auto *texts = dynamic_cast<const Exiv2::LangAltValue *>(&datum.value());
        if (list) {
            auto changed = std::make_unique<Exiv2::XmpArrayValue>(list->typeId());
            for (long i = 0; i < list->count(); ++i) {
                std::string text = list->toString(i);
                restore(text);
                changed->read(text);
            }
            datum.setValue(changed.get());
        } else if (texts) {
            Exiv2::LangAltValue changed = *texts;
            for (auto &[language, text] : changed.value_)
                restore(text);
            datum.setValue(&changed);
        }
    }
}

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

Exiv2::XmpTextValue plainXmpText(const std::string &text)
{
    Exiv2::XmpTextValue value;
    value.value_ = text;
    return value;
}

} // namespace plexa

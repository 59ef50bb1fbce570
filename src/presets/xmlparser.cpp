// SPDX-License-Identifier: GPL-3.0-or-later

#include "presets/xmlparser.h"

#include "presets/xmltokenizer.h"

#include <QFile>
#include <QFileInfo>

#include <cstdio>
#include <utility>

namespace plexa
{
namespace
{

constexpr qsizetype kMaxQuotedBytes = 1000;

/// A quotation of the file in an error line, shortened.
QByteArray quoted(QByteArrayView text)
{
    if (text.size() <= kMaxQuotedBytes)
        return '"' + text.toByteArray() + '"';
    qsizetype length = kMaxQuotedBytes;
    while (length > 0 && (static_cast<uchar>(text[length]) & 0xC0U) == 0x80U) // inside a UTF-8 sequence
        --length;
    return '"' + text.first(length).toByteArray() + "...\"";
}

const struct Entity {
    QByteArrayView reference;
    char character;
} kEntities[] = {{"&lt;", '<'}, {"&gt;", '>'}, {"&amp;", '&'}, {"&quot;", '"'}, {"&apos;", '\''}};

/// -1 for other characters.
int digitOf(char c, int base)
{
    const char lower = c >= 'A' && c <= 'F' ? static_cast<char>(c + ('a' - 'A')) : c;
    return static_cast<int>(QByteArrayView("0123456789abcdef").first(base).indexOf(lower));
}

/// The length of the reference at the start of `text`, and its byte; 0 for an unknown reference.
qsizetype referenceAt(QByteArrayView text, char &byte)
{
    for (const Entity &entity : kEntities) {
        if (text.startsWith(entity.reference)) {
            byte = entity.character;
            return entity.reference.size();
        }
    }
    if (!text.startsWith("&#"))
        return 0;
    const bool isHex = text.size() > 2 && (text[2] == 'x' || text[2] == 'X');
    const int base = isHex ? 16 : 10;
    const qsizetype start = isHex ? 3 : 2;
    qsizetype end = start;
    unsigned code = 0; // only its low 8 bits count, so it may overflow
    for (; end < text.size() && digitOf(text[end], base) >= 0; ++end)
        code = code * static_cast<unsigned>(base) + static_cast<unsigned>(digitOf(text[end], base));
    if (end == start || end == text.size() || text[end] != ';')
        return 0;
    byte = static_cast<char>(code & 0xFFU);
    return end + 1;
}

} // namespace

const QByteArray &XMLParser::Value::decoded() const
{
    if (!m_decoded)
        m_decoded = m_parser ? m_parser->decode(m_raw).value_or(QByteArray()) : QByteArray();
    return *m_decoded;
}

std::optional<QByteArray> XMLParser::Element::attributeValue(QByteArrayView name) const
{
    for (const Attribute &attribute : m_attributes) {
        if (attribute.name.decoded().startsWith(name))
            return attribute.value.decoded();
    }
    return std::nullopt;
}

const XMLParser::Element *XMLParser::Element::subelement(qsizetype index) const
{
    return index >= 0 && index < subelementCount() ? m_subelements[static_cast<std::size_t>(index)].get()
                                                   : nullptr;
}

const XMLParser::Element *XMLParser::Element::subelement(QByteArrayView name) const
{
    for (const auto &element : m_subelements) {
        if (element->name().startsWith(name))
            return element.get();
    }
    return nullptr;
}

void XMLParser::writeErrorLine(const QByteArray &line)
{
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stderr);
    std::fflush(stderr);
}

XMLParser::XMLParser(ErrorSink errors)
    : m_errors(std::move(errors))
{
}

XMLParser::~XMLParser() = default;

bool XMLParser::loadFile(const QString &path)
{
    const auto refuse = [&](const char *message) {
        report(message + quoted(path.toUtf8()));
        return false;
    };
    // Opening a pipe would block.
    const QFileInfo info(path);
    if (info.exists() && !info.isFile())
        return refuse("cannot read the file ");
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return refuse("cannot open the file ");
    const qint64 size = file.size();
    if (size > kMaxFileBytes)
        return refuse("there are more than 16 MB in the file ");
    QByteArray bytes = file.read(size);
    if (bytes.size() != size)
        return refuse("cannot read the file ");
    m_bytes = std::move(bytes);
    return true;
}

bool XMLParser::parse(const QByteArray &bytes)
{
    if (m_bytes)
        return false;
    m_bytes = bytes;
    return parse();
}

bool XMLParser::loadAndParseFile(const QString &path)
{
    m_fileName = path.toUtf8();
    return !m_bytes && loadFile(path) && parse();
}

bool XMLParser::parse()
{
    m_tokenizer =
        std::make_unique<XMLTokenizer>(*m_bytes, [this](const QByteArray &message) { reportHere(message); });
    if (m_bytes->size() > kMaxFileBytes)
        report("there are more than 16 MB to read");
    else
        parseDocument();
    return !m_hasError;
}

void XMLParser::report(const QByteArray &message)
{
    write("ERROR:  " + message);
}

void XMLParser::reportHere(const QByteArray &message)
{
    QByteArray line = "ERROR";
    if (!m_fileName.isEmpty())
        line += m_fileName + ' ';
    line += " (line " + QByteArray::number(m_tokenizer->line());
    if (m_tokenizer->token() != XMLToken::None)
        line += ", near " + quoted(m_tokenizer->text());
    write(line + "):  " + message);
}

void XMLParser::write(const QByteArray &line)
{
    m_hasError = true;
    QByteArray shown = line;
    // The contents of a file must not control a terminal or look like another line.
    for (char &c : shown) {
        if (static_cast<uchar>(c) < 0x20 || c == 0x7F)
            c = c == '\t' || c == '\n' ? ' ' : '?';
    }
    m_errors(shown + '\n');
}

bool XMLParser::expect(XMLToken first, OnFailure onFailure, std::optional<XMLToken> second)
{
    const XMLToken token = m_tokenizer->next();
    if (token == first || token == second)
        return true;
    if (onFailure == OnFailure::Report) {
        QByteArray message = "expected " + xmlTokenDescription(first);
        if (second)
            message += " or " + xmlTokenDescription(*second);
        reportHere(message);
    }
    m_tokenizer->pushBack();
    return false;
}

bool XMLParser::countRecord()
{
    if (++m_records <= kMaxRecords)
        return true;
    reportHere("there are more than " + QByteArray::number(kMaxRecords) + " elements and attributes");
    return false;
}

void XMLParser::parseDocument()
{
    m_header = parseElement(Tag::Header, 1);
    if (!m_header || !m_header->name().startsWith("xml")) {
        reportHere("missing the standard XML header tag <?xml ...?>");
        return;
    }
    m_root = parseElement(Tag::Element, 1);
    if (!m_root)
        return;
    m_tokenizer->skip();
    if (!m_tokenizer->isAtEnd())
        reportHere("unexpected end of XML file (maybe multiple root elements)");
}

std::unique_ptr<XMLParser::Element> XMLParser::parseElement(Tag tag, int depth)
{
    // The caller reports a missing header.
    const bool hasStart = tag == Tag::Header ? expect(XMLToken::HeaderStart, OnFailure::KeepSilent)
                                             : expect(XMLToken::TagStart, OnFailure::Report);
    if (!hasStart || !expect(XMLToken::Data, OnFailure::Report) || !countRecord())
        return nullptr;
    if (depth > kMaxDepth) {
        reportHere("the elements are nested more than " + QByteArray::number(kMaxDepth) + " deep");
        return nullptr;
    }
    auto element = std::make_unique<Element>(this, m_tokenizer->text());
    if (!parseAttributes(*element, tag))
        return nullptr;
    if (m_tokenizer->token() == XMLToken::TagEnd && !parseContents(*element, depth))
        return nullptr;
    return element;
}

/// Reads to the end of the tag, which becomes the last token.
bool XMLParser::parseAttributes(Element &element, Tag tag)
{
    const auto isEnd = [](XMLToken token) {
        return token == XMLToken::TagEnd || token == XMLToken::EmptyElementEnd;
    };
    const auto refuse = [this] {
        reportHere("expected an attribute or end of tag");
        return false;
    };
    XMLToken token = m_tokenizer->next();
    for (; !isEnd(token); token = m_tokenizer->next()) {
        if (tag == Tag::Header && token == XMLToken::HeaderEnd)
            return true;
        if (token != XMLToken::Data)
            return refuse();
        if (!countRecord() || !parseAttribute(element))
            return false;
    }
    return tag == Tag::Header ? refuse() : true;
}

/// The attribute's name is the last token.
bool XMLParser::parseAttribute(Element &element)
{
    Attribute attribute;
    attribute.name = Value(this, m_tokenizer->text());
    if (!expect(XMLToken::EqualSign, OnFailure::Report) ||
        !expect(XMLToken::SingleQuote, OnFailure::Report, XMLToken::DoubleQuote) ||
        !expect(XMLToken::Data, OnFailure::Report))
        return false;
    attribute.value = Value(this, m_tokenizer->text());
    if (!expect(XMLToken::SingleQuote, OnFailure::Report, XMLToken::DoubleQuote))
        return false;
    element.m_attributes.push_back(std::move(attribute));
    return true;
}

/// Reads to the closing tag.
bool XMLParser::parseContents(Element &element, int depth)
{
    if (expect(XMLToken::Data, OnFailure::KeepSilent))
        element.m_text = Value(this, m_tokenizer->text());
    while (expect(XMLToken::TagStart, OnFailure::KeepSilent)) {
        m_tokenizer->pushBack();
        std::unique_ptr<Element> subelement = parseElement(Tag::Element, depth + 1);
        if (!subelement)
            return false;
        element.m_subelements.push_back(std::move(subelement));
    }
    const bool isClosed = expect(XMLToken::ClosingTagStart, OnFailure::KeepSilent) &&
                          expect(XMLToken::Data, OnFailure::KeepSilent) &&
                          m_tokenizer->text() == element.m_name.raw() &&
                          expect(XMLToken::TagEnd, OnFailure::KeepSilent);
    if (!isClosed)
        reportHere("the element " + quoted(element.m_name.raw()) + " is not closed!");
    return isClosed;
}

std::optional<QByteArray> XMLParser::decode(QByteArrayView raw)
{
    QByteArray decoded;
    decoded.reserve(raw.size());
    while (!raw.isEmpty()) {
        const qsizetype found = raw.indexOf('&');
        const qsizetype plain = found < 0 ? raw.size() : found;
        decoded.append(raw.first(plain));
        raw = raw.sliced(plain);
        if (raw.isEmpty())
            break;
        char byte = 0;
        const qsizetype length = referenceAt(raw, byte);
        if (length == 0) {
            report("unknown entity reference: " + quoted(raw));
            return std::nullopt;
        }
        decoded.append(byte);
        raw = raw.sliced(length);
    }
    if (const qsizetype nul = decoded.indexOf('\0'); nul >= 0)
        decoded.truncate(nul);
    return decoded;
}

} // namespace plexa

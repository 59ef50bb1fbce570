// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace plexa
{

enum class XMLToken;
class XMLTokenizer;

/// Reads the XML of the program's own preset files: a header tag, one root element, nested elements with
/// attributes, a text directly after a start tag, comments. It is not a general XML parser: an empty element
/// needs a blank before its "/>". One parser reads one file, on one thread at a time.
class XMLParser final
{
public:
    /// Receives an error line with its line end.
    using ErrorSink = std::function<void(const QByteArray &line)>;

    /// A piece of the file whose entity references are decoded at the first access.
    class Value
    {
    public:
        Value() = default;
        Value(XMLParser *parser, QByteArrayView raw)
            : m_parser(parser)
            , m_raw(raw)
        {
        }

        QByteArrayView raw() const { return m_raw; }

        /// The bytes, up to the first NUL. Empty, with an error line, for an unknown entity reference.
        const QByteArray &decoded() const;

    private:
        XMLParser *m_parser = nullptr;
        QByteArrayView m_raw;
        mutable std::optional<QByteArray> m_decoded;
    };

    struct Attribute {
        Value name;
        Value value;
    };

    /// An element, owned by the parser. A look-up by name returns the first one that begins with the name:
    /// "format" finds "formatX" if that comes first.
    class Element
    {
    public:
        Element(XMLParser *parser, QByteArrayView name)
            : m_parser(parser)
            , m_name(parser, name)
        {
        }

        const QByteArray &name() const { return m_name.decoded(); }
        /// Empty when there is no text.
        const QByteArray &text() const { return m_text.decoded(); }

        qsizetype attributeCount() const { return std::ssize(m_attributes); }
        std::optional<QByteArray> attributeValue(QByteArrayView name) const;

        qsizetype subelementCount() const { return std::ssize(m_subelements); }
        /// Null for an index out of range or an unknown name.
        const Element *subelement(qsizetype index) const;
        const Element *subelement(QByteArrayView name) const;

        /// As XMLParser::report().
        void report(const QByteArray &message) const { m_parser->report(message); }

    private:
        friend class XMLParser;

        XMLParser *m_parser;
        Value m_name;
        Value m_text;
        std::vector<Attribute> m_attributes;
        std::vector<std::unique_ptr<Element>> m_subelements;
    };

    /// Limits of bytes, nesting, and elements and attributes; a file beyond them is refused.
    static constexpr qsizetype kMaxFileBytes = 16 * 1024 * 1024;
    static constexpr int kMaxDepth = 100;
    static constexpr int kMaxRecords = 200'000;

    /// Writes to the standard error stream.
    static void writeErrorLine(const QByteArray &line);

    explicit XMLParser(ErrorSink errors = writeErrorLine);
    ~XMLParser();
    XMLParser(const XMLParser &) = delete;
    XMLParser &operator=(const XMLParser &) = delete;

    /// Both work once. True if the bytes are valid.
    bool parse(const QByteArray &bytes);
    bool loadAndParseFile(const QString &path);

    /// Null before parse(), and if it failed before their end. They live as long as the parser.
    const Element *header() const { return m_header.get(); }
    const Element *root() const { return m_root.get(); }

    bool hasError() const { return m_hasError; }

    /// Writes an error line without a position in the file.
    void report(const QByteArray &message);

private:
    enum class Tag { Header, Element };
    enum class OnFailure { Report, KeepSilent };

    bool loadFile(const QString &path);
    bool parse();
    void reportHere(const QByteArray &message);
    void write(const QByteArray &line);
    bool expect(XMLToken first, OnFailure onFailure, std::optional<XMLToken> second = {});
    bool countRecord();
    void parseDocument();
    std::unique_ptr<Element> parseElement(Tag tag, int depth);
    bool parseAttributes(Element &element, Tag tag);
    bool parseAttribute(Element &element);
    bool parseContents(Element &element, int depth);
    std::optional<QByteArray> decode(QByteArrayView raw);

    ErrorSink m_errors;
    QByteArray m_fileName;
    std::optional<QByteArray> m_bytes;
    std::unique_ptr<XMLTokenizer> m_tokenizer;
    int m_records = 0;
    bool m_hasError = false;
    std::unique_ptr<Element> m_header;
    std::unique_ptr<Element> m_root;
};

} // namespace plexa

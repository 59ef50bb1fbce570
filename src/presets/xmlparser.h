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
/// attributes, a text directly behind a start tag, comments. It is no XML parser for other purposes: there
/// are no document types, namespaces, CDATA sections or encodings, and an empty element needs a blank before
/// its "/>".
///
/// Every file may be damaged or made to harm: nothing outside of the bytes is read, and size, nesting and
/// number of elements are limited. What is wrong is said in error lines, which go to the standard error
/// stream unless another receiver is given. One parser reads one file, on one thread at a time; any number of
/// them may work at once.
class XMLParser final
{
public:
    /// Takes one error line, its line end included.
    using ErrorSink = std::function<void(const QByteArray &line)>;

    /// A piece of the file whose entity references are decoded when it is first asked for.
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

        /// UTF-8 as it stands in the file, up to the first NUL. Empty, with an error line, where an entity
        /// reference is unknown.
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

    /// An element; it belongs to the parser. Look-ups by name go from the first to the last and find what
    /// begins with the name: "format" finds "formatX" where that comes first.
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
        /// Null when there are not that many, or none of that name.
        const Element *subelement(qsizetype index) const;
        const Element *subelement(QByteArrayView name) const;

        /// Writes an error line about what the file says, as XMLParser::report() does.
        void report(const QByteArray &message) const { m_parser->report(message); }

    private:
        friend class XMLParser;

        XMLParser *m_parser;
        Value m_name;
        Value m_text;
        std::vector<Attribute> m_attributes;
        std::vector<std::unique_ptr<Element>> m_subelements;
    };

    /// What is larger, deeper nested or has more elements and attributes is refused.
    static constexpr qsizetype kMaxFileBytes = 16 * 1024 * 1024;
    static constexpr int kMaxDepth = 100;
    static constexpr int kMaxRecords = 200'000;

    /// Writes to the standard error stream.
    static void writeErrorLine(const QByteArray &line);

    explicit XMLParser(ErrorSink errors = writeErrorLine);
    ~XMLParser();
    XMLParser(const XMLParser &) = delete;
    XMLParser &operator=(const XMLParser &) = delete;

    /// Reads a file whole, without looking at what it says. Fails when one was read already.
    bool loadFile(const QString &path);

    /// Takes what was loaded, or these bytes, apart. True when nothing is wrong with it. Once.
    bool parse();
    bool parse(const QByteArray &bytes);

    bool loadAndParseFile(const QString &path);

    /// Null before parse() and where it failed before their end; they live as long as the parser.
    const Element *header() const { return m_header.get(); }
    const Element *root() const { return m_root.get(); }

    /// Has any error line been written? Stays so.
    bool hasError() const { return m_hasError; }

    /// Writes an error line without a place in the file.
    void report(const QByteArray &message);

private:
    enum class Tag { Header, Element };
    enum class OnFailure { Report, KeepSilent };

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

// SPDX-License-Identifier: GPL-3.0-or-later

#include "presets/xmltokenizer.h"

#include <algorithm>
#include <array>
#include <utility>

namespace plexa
{
namespace
{

struct TokenKind {
    const char *name;
    const char *text;
};

// In the order of XMLToken.
constexpr std::array kTokenKinds{
    TokenKind{"WRONG", "wrong!!!"},
    TokenKind{"start of a header tag", "<?"},
    TokenKind{"end of a header tag", "?>"},
    TokenKind{"start of a tag", "<"},
    TokenKind{"start of a closing tag", "</"},
    TokenKind{"end of a tag", ">"},
    TokenKind{"end of an empty element", "/>"},
    TokenKind{"equal sign", "="},
    TokenKind{"single quote", "'"},
    TokenKind{"double quote", "\""},
    TokenKind{"data", ""},
};

constexpr QByteArrayView kCommentStart = "<!--";
constexpr QByteArrayView kCommentEnd = "-->";

QByteArrayView textOf(XMLToken token)
{
    return kTokenKinds[static_cast<std::size_t>(token)].text;
}

int linesIn(QByteArrayView text)
{
    return static_cast<int>(std::count(text.begin(), text.end(), '\n'));
}

} // namespace

QByteArray xmlTokenDescription(XMLToken token)
{
    const QByteArray name = kTokenKinds[static_cast<std::size_t>(token)].name;
    const QByteArrayView text = textOf(token);
    return text.isEmpty() ? name : name + " \"" + text.toByteArray() + '"';
}

XMLTokenizer::XMLTokenizer(QByteArrayView bytes, Report report)
    : m_bytes(bytes)
    , m_report(std::move(report))
{
}

XMLToken XMLTokenizer::next()
{
    if (!m_isInsideQuotes)
        skip();
    const XMLToken previous = m_token;
    m_tokenStart = m_cursor;
    m_tokenLine = m_line;
    if (isAtEnd())
        return finish(XMLToken::None, 0);
    if (m_isInsideQuotes && previous == XMLToken::SingleQuote)
        return quoted('\'');
    if (m_isInsideQuotes && previous == XMLToken::DoubleQuote)
        return quoted('"');

    switch (at(0)) {
    case '<':
        if (at(1) == '?')
            return symbol(XMLToken::HeaderStart);
        return symbol(at(1) == '/' ? XMLToken::ClosingTagStart : XMLToken::TagStart);
    case '=':
        return symbol(XMLToken::EqualSign);
    case '>':
        return symbol(XMLToken::TagEnd);
    case '?':
        return malformed(XMLToken::HeaderEnd, "expected a closing header tag \"?>\"");
    case '/':
        return malformed(XMLToken::EmptyElementEnd, "expected a closing empty tag \"/>\"");
    case '"':
        m_isInsideQuotes = !m_isInsideQuotes;
        return symbol(XMLToken::DoubleQuote);
    case '\'':
        m_isInsideQuotes = !m_isInsideQuotes;
        return symbol(XMLToken::SingleQuote);
    default:
        return text(previous);
    }
}

void XMLTokenizer::pushBack()
{
    m_cursor = m_tokenStart;
    m_line = m_tokenLine;
}

void XMLTokenizer::skip()
{
    while (!isAtEnd()) {
        if (at(0) == ' ' || at(0) == '\t') {
            ++m_cursor;
        } else if (const qsizetype length = lineEndAt(m_cursor); length > 0) {
            m_cursor += length;
            ++m_line;
        } else if (!skipComment()) {
            return;
        }
    }
}

bool XMLTokenizer::skipComment()
{
    if (!m_bytes.sliced(m_cursor).startsWith(kCommentStart))
        return false;
    const qsizetype end = m_bytes.indexOf(kCommentEnd, m_cursor + kCommentStart.size());
    const qsizetype next = end < 0 ? m_bytes.size() : end + kCommentEnd.size();
    m_line += linesIn(m_bytes.sliced(m_cursor, next - m_cursor));
    m_cursor = next;
    if (end < 0)
        m_report("unexpected end of file");
    return true;
}

/// A NUL, which is not a symbol, after the end.
char XMLTokenizer::at(qsizetype offset) const
{
    return offset < m_bytes.size() - m_cursor ? m_bytes[m_cursor + offset] : '\0';
}

/// The length of the line end at a position; 0 when there is none.
qsizetype XMLTokenizer::lineEndAt(qsizetype position) const
{
    if (m_bytes[position] == '\n')
        return 1;
    const bool isPair =
        m_bytes[position] == '\r' && position + 1 < m_bytes.size() && m_bytes[position + 1] == '\n';
    return isPair ? 2 : 0;
}

XMLToken XMLTokenizer::finish(XMLToken token, qsizetype length)
{
    m_token = token;
    m_text = m_bytes.sliced(m_cursor, length);
    m_cursor += length;
    return token;
}

XMLToken XMLTokenizer::symbol(XMLToken token)
{
    return finish(token, textOf(token).size());
}

/// A symbol of two characters of which only the first is certain.
XMLToken XMLTokenizer::malformed(XMLToken token, const char *message)
{
    if (at(1) == '>')
        return symbol(token);
    // The same position may be read for several kinds of token.
    if (std::exchange(m_reportedAt, m_cursor) != m_cursor)
        m_report(message);
    return finish(XMLToken::None, 0);
}

XMLToken XMLTokenizer::quoted(char quote)
{
    qsizetype end = m_bytes.indexOf(quote, m_cursor);
    if (end < 0)
        end = m_bytes.indexOf(quote == '"' ? '\'' : '"', m_cursor);
    if (end < 0)
        end = m_bytes.size();
    m_line += linesIn(m_bytes.sliced(m_cursor, end - m_cursor));
    return finish(XMLToken::Data, end - m_cursor);
}

XMLToken XMLTokenizer::text(XMLToken previous)
{
    if (previous == XMLToken::TagEnd) {
        const qsizetype found = m_bytes.indexOf('<', m_cursor);
        const qsizetype end = found < 0 ? m_bytes.size() : found;
        m_line += linesIn(m_bytes.sliced(m_cursor, end - m_cursor));
        return finish(XMLToken::Data, end - m_cursor);
    }
    QByteArrayView stops = " \t=";
    if (previous == XMLToken::HeaderStart || previous == XMLToken::TagStart)
        stops = " \t>";
    else if (previous == XMLToken::ClosingTagStart)
        stops = ">";
    qsizetype end = m_cursor;
    while (end < m_bytes.size() && !stops.contains(m_bytes[end]) && lineEndAt(end) == 0)
        ++end;
    finish(XMLToken::Data, end - m_cursor);
    const qsizetype lineEnd = isAtEnd() ? 0 : lineEndAt(m_cursor);
    if (lineEnd > 0) {
        m_cursor += lineEnd;
        ++m_line;
    }
    return XMLToken::Data;
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <functional>

namespace plexa
{

/// What the text of a preset file is made of. Symbols, and data: names, values and texts.
enum class XMLToken {
    None, ///< nothing was read: the end of the file, or no token begins so
    HeaderStart,
    HeaderEnd,
    TagStart,
    ClosingTagStart,
    TagEnd,
    EmptyElementEnd,
    EqualSign,
    SingleQuote,
    DoubleQuote,
    Data,
};

/// The token as error lines call it: its name and, for symbols, its quoted text.
QByteArray xmlTokenDescription(XMLToken token);

/// Splits the bytes of a preset file into tokens. What ends a name or a text depends on the token before it,
/// as told at next(). White space and comments between tokens are passed over. Never reads outside of the
/// bytes, which stay the caller's and must outlive the object.
class XMLTokenizer final
{
public:
    /// Is given a message for each fault, when the tokenizer is still at the token before it.
    using Report = std::function<void(const QByteArray &message)>;

    XMLTokenizer(QByteArrayView bytes, Report report);

    /// Reads a token. Data ends
    /// - in quotes: before the quote that began them, or where that does not come again, the other one;
    /// - as a tag's name: before a blank, a tab, a line end or ">" (so "/" is a part of a name);
    /// - as a closing tag's name: before a line end or ">";
    /// - behind ">": before "<";
    /// - else, as an attribute's name: before a blank, a tab, a line end or "=".
    /// Text that begins with a quote, "=", "?", "/" or ">" is therefore no data.
    XMLToken next();

    /// Gives the last token back, to be read again. What depends on the token before it then depends on
    /// itself, and a quote counts once more as the beginning or the end of quotes.
    void pushBack();

    /// Passes over white space and comments. A carriage return is white space before a line feed only.
    void skip();

    bool isAtEnd() const { return m_cursor >= m_bytes.size(); }

    XMLToken token() const { return m_token; }
    QByteArrayView text() const { return m_text; }

    /// The line of the reading position, from 1.
    int line() const { return m_line; }

private:
    char at(qsizetype offset) const;
    qsizetype lineEndAt(qsizetype position) const;
    bool skipComment();
    XMLToken finish(XMLToken token, qsizetype length);
    XMLToken symbol(XMLToken token);
    XMLToken malformed(XMLToken token, const char *message);
    XMLToken quoted(char quote);
    XMLToken text(XMLToken previous);

    QByteArrayView m_bytes;
    Report m_report;
    qsizetype m_cursor = 0;
    qsizetype m_reportedAt = -1;
    int m_line = 1;
    bool m_isInsideQuotes = false;
    XMLToken m_token = XMLToken::None;
    QByteArrayView m_text;
    qsizetype m_tokenStart = 0;
    int m_tokenLine = 1;
};

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <functional>

namespace plexa
{

/// The tokens of a preset file: symbols, and data (names, values and texts).
enum class XMLToken {
    None, ///< the end of the file, or invalid characters
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

/// The token in an error line: its name and, for symbols, its quoted text.
QByteArray xmlTokenDescription(XMLToken token);

/// Splits the bytes of a preset file into tokens. White space and comments between tokens are skipped. The
/// caller's bytes outlive the object.
class XMLTokenizer final
{
public:
    /// Receives a message for each fault; token() is still the token before it.
    using Report = std::function<void(const QByteArray &message)>;

    XMLTokenizer(QByteArrayView bytes, Report report);

    /// Reads a token. Data ends
    /// - in quotes: before the next quote of the same kind, or if there is none, of the other kind;
    /// - as a tag's name: before a blank, a tab, a line end or ">" (so "/" is a part of a name);
    /// - as a closing tag's name: before a line end or ">";
    /// - after ">": before "<";
    /// - otherwise, as an attribute's name: before a blank, a tab, a line end or "=".
    /// Text that begins with a quote, "=", "?", "/" or ">" is therefore not data.
    XMLToken next();

    /// Makes next() read the last token again, which then counts as the token before itself.
    void pushBack();

    /// Skips white space and comments. A carriage return is white space before a line feed only.
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

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QSet>
#include <QStringList>
#include <QTextCharFormat>

class QMimeData;
class QTextCursor;
class QTextDocument;

namespace plexa
{

/// One part of the text of a token field: a pill, or the literal text between two pills.
struct FieldPiece {
    QString text; ///< of a pill: the name of its token
    bool isPill = false;
    /// Literal text that is not expanded although it equals the name of a token: it was given in parts.
    bool staysText = false;
    int position = 0; ///< in the document

    bool isSameAs(const FieldPiece &other) const
    {
        return text == other.text && isPill == other.isPill && staysText == other.staysText;
    }
};

/// The format of the one character that holds a pill.
inline constexpr int kPillObject = QTextFormat::UserObject + 1;
QTextCharFormat pillFormat(const QString &name);
/// @return empty if the format is not that of a pill
QString pillName(const QTextFormat &format);

/// The text without characters that have a meaning for the document, and without control characters; "\n" for
/// each kind of line break.
QString fieldText(QString text);

/// The pieces that show a list of tokens and literal texts: adjacent literal texts are joined.
QList<FieldPiece> fieldPieces(const QStringList &textTokens, const QSet<QString> &vocabulary);

/// Inserts the pieces at the caret, as one step of the undo history, and replaces the selection.
void insertPieces(QTextCursor &cursor, const QList<FieldPiece> &pieces);

/// The pieces between two positions of the document.
QList<FieldPiece> readPieces(const QTextDocument &document, int from, int to);

/// The list of tokens and literal texts that pieces show.
QStringList textTokensOf(const QList<FieldPiece> &pieces, const QSet<QString> &vocabulary);

/// The names of the tokens in braces.
QString plainTextOf(const QList<FieldPiece> &pieces);

/// The pieces for the clipboard and drags: plain text for other programs, and a form
/// of our own. @return owned by the caller
QMimeData *piecesToMimeData(const QList<FieldPiece> &pieces);

/// Does the data hold a text that a token field accepts? Files are not texts.
bool holdsPieces(const QMimeData &data);

/// @return literal text if the data come from another program; tokens outside `vocabulary` become text in
/// braces
QList<FieldPiece> piecesFromMimeData(const QMimeData &data, const QSet<QString> &vocabulary);

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/editors/tokenfieldtext.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMimeData>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFragment>

#include <algorithm>

namespace plexa
{
namespace
{

constexpr int kNameProperty = QTextFormat::UserProperty + 1;
constexpr int kStaysTextProperty = QTextFormat::UserProperty + 2;

QString piecesMimeType()
{
    return QStringLiteral("application/x-plexa-text-tokens");
}

QString inBraces(const QString &name)
{
    return u'{' + name + u'}';
}

void appendText(QList<FieldPiece> &pieces, const QString &text, bool staysText, int position)
{
    if (text.isEmpty())
        return;
    if (pieces.isEmpty() || pieces.back().isPill)
        pieces.append({{}, false, false, position});
    pieces.back().text += text;
    pieces.back().staysText |= staysText;
}

bool isLineBreak(QChar character)
{
    return character == u'\n' || character == u'\r' || character == u'\v' || character == u'\f' ||
           character == QChar::LineSeparator || character == QChar::ParagraphSeparator;
}

/// Control characters, and those that the document uses for itself.
bool isReserved(QChar character)
{
    const char16_t code = character.unicode();
    return (character.category() == QChar::Other_Control && code != u'\t') ||
           (code >= 0xfdd0 && code <= 0xfdef) || code >= 0xfffc;
}

} // namespace

QTextCharFormat pillFormat(const QString &name)
{
    QTextCharFormat format;
    format.setObjectType(kPillObject);
    format.setProperty(kNameProperty, name);
    return format;
}

QString pillName(const QTextFormat &format)
{
    return format.objectType() == kPillObject ? format.stringProperty(kNameProperty) : QString();
}

QString fieldText(QString text)
{
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    QString clean;
    clean.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar character = text[i];
        if (isLineBreak(character)) {
            clean += u'\n';
        } else if (character.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            clean += character;
            clean += text[++i];
        } else if (!character.isSurrogate() && !isReserved(character)) {
            clean += character;
        }
    }
    return clean;
}

QList<FieldPiece> fieldPieces(const QStringList &textTokens, const QSet<QString> &vocabulary)
{
    QList<FieldPiece> pieces;
    for (const QString &token : textTokens) {
        if (vocabulary.contains(token))
            pieces.append({token, true});
        else
            appendText(pieces, fieldText(token), false, 0);
    }
    for (FieldPiece &piece : pieces)
        piece.staysText = !piece.isPill && vocabulary.contains(piece.text);
    return pieces;
}

void insertPieces(QTextCursor &cursor, const QList<FieldPiece> &pieces)
{
    cursor.beginEditBlock();
    cursor.removeSelectedText();
    for (const FieldPiece &piece : pieces) {
        QTextCharFormat format;
        if (piece.isPill)
            format = pillFormat(piece.text);
        else if (piece.staysText)
            format.setProperty(kStaysTextProperty, true);
        cursor.insertText(piece.isPill ? QString(QChar::ObjectReplacementCharacter) : piece.text, format);
    }
    cursor.endEditBlock();
}

QList<FieldPiece> readPieces(const QTextDocument &document, int from, int to)
{
    QList<FieldPiece> pieces;
    for (QTextBlock block = document.findBlock(from); block.isValid() && block.position() <= to;
         block = block.next()) {
        // The break before a block belongs to the selection that begins in an earlier block.
        if (block.position() > from)
            appendText(pieces, QStringLiteral("\n"), false, block.position() - 1);
        for (auto at = block.begin(); !at.atEnd(); ++at) {
            const QTextFragment fragment = at.fragment();
            const int start = std::max(fragment.position(), from);
            const int length = std::min(fragment.position() + fragment.length(), to) - start;
            if (length <= 0)
                continue;
            const QString name = pillName(fragment.charFormat());
            if (name.isEmpty()) {
                appendText(pieces, fieldText(fragment.text().mid(start - fragment.position(), length)),
                           fragment.charFormat().boolProperty(kStaysTextProperty), start);
                continue;
            }
            for (int i = 0; i < length; ++i) // equal pills are one fragment
                pieces.append({name, true, false, start + i});
        }
    }
    return pieces;
}

QStringList textTokensOf(const QList<FieldPiece> &pieces, const QSet<QString> &vocabulary)
{
    QStringList tokens;
    for (const FieldPiece &piece : pieces) {
        if (piece.staysText && vocabulary.contains(piece.text))
            tokens << piece.text.left(1) << piece.text.mid(1);
        else
            tokens << piece.text;
    }
    return tokens;
}

QString plainTextOf(const QList<FieldPiece> &pieces)
{
    QString text;
    for (const FieldPiece &piece : pieces)
        text += piece.isPill ? inBraces(piece.text) : piece.text;
    return text;
}

QMimeData *piecesToMimeData(const QList<FieldPiece> &pieces)
{
    QJsonArray array;
    for (const FieldPiece &piece : pieces) {
        array.append(piece.isPill ? QJsonValue(QJsonObject{{QStringLiteral("token"), piece.text}})
                                  : QJsonValue(piece.text));
    }
    auto *const data = new QMimeData;
    data->setText(plainTextOf(pieces));
    data->setData(piecesMimeType(), QJsonDocument(array).toJson(QJsonDocument::Compact));
    return data;
}

bool holdsPieces(const QMimeData &data)
{
    return data.hasFormat(piecesMimeType()) || (data.hasText() && !data.hasUrls());
}

QList<FieldPiece> piecesFromMimeData(const QMimeData &data, const QSet<QString> &vocabulary)
{
    QList<FieldPiece> pieces;
    const QJsonDocument document = QJsonDocument::fromJson(data.data(piecesMimeType()));
    if (!document.isArray()) {
        appendText(pieces, fieldText(data.text()), false, 0);
        return pieces;
    }
    for (const QJsonValue &value : document.array()) {
        const QString name = value.toObject().value(QLatin1String("token")).toString();
        if (vocabulary.contains(name))
            pieces.append({name, true});
        else
            appendText(pieces, fieldText(value.isObject() ? inBraces(name) : value.toString()), false, 0);
    }
    return pieces;
}

} // namespace plexa

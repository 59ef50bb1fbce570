// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/editors/tokenfieldtext.h"
#include "ui/editors/tokenmenu.h"

#include <QPointer>
#include <QTextEdit>

class QPushButton;

namespace plexa
{

class TokenFieldCompletion;
class TokenFieldPill;

/// Edits a list of literal texts and tokens as one text of several lines, in which each token is a pill that
/// the caret passes as one character. A piece is shown as a token exactly when it equals a name of the
/// vocabulary. Typing "{" offers the names.
class TokenFieldWithInsertPopup final : public QTextEdit
{
    Q_OBJECT
    Q_PROPERTY(QStringList textTokens READ textTokens WRITE setTextTokens NOTIFY textTokensChanged USER true)

public:
    explicit TokenFieldWithInsertPopup(QWidget *parent = nullptr);

    /// Set it once, before the texts.
    void setVocabulary(const TokenGroups &groups);

    /// Must be set before the field is shown. The button gets the menu of the vocabulary.
    /// @param button  may be deleted before the field
    void setInsertPopUpButton(QPushButton *button);

    /// Without, as for the names of files, the Return key is left to the dialog, and what is pasted is one
    /// line. The field is lower then.
    void setAcceptsLineBreaks(bool accepts);

    /// Shown in the menu, in the list of names and in tool tips. @param value  empty while there is no
    /// current photo
    void setValueOnPhoto(const TokenValue &value);

    /// The list as it was set, until the user edits it; then adjacent literal texts are one.
    QStringList textTokens() const { return m_textTokens; }

    /// Shows a list. If the field shows it already, caret, selection and undo history stay; else the undo
    /// history is cleared. Emits nothing.
    void setTextTokens(const QStringList &textTokens);

    /// Inserts a token at the caret and replaces the selection; after the text if the user has not set the
    /// caret yet. Ignores names outside the vocabulary.
    void insertToken(const QString &name);

    /// The parts of the text with their positions in the document.
    QList<FieldPiece> shownPieces() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The user edited the list.
    void textTokensChanged(const QStringList &textTokens);

protected:
    bool canInsertFromMimeData(const QMimeData *source) const override;
    QMimeData *createMimeDataFromSelection() const override;
    void insertFromMimeData(const QMimeData *source) override;
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;
    bool viewportEvent(QEvent *event) override;

private:
    void documentChanged();
    void showPieces(const QList<FieldPiece> &pieces);
    /// Replaces the selection of `cursor`, and sets it as the caret.
    void insert(QTextCursor &cursor, const QList<FieldPiece> &pieces);
    qreal heightOfLine() const;
    int heightOfLines(int lines) const;
    /// From left to right, in the document.
    struct Extent {
        qreal left;
        qreal right;
        bool contains(qreal x) const { return x >= left && x <= right; }
    };
    Extent extentOf(const QTextCursor &pill) const;
    /// The pill at a point of the viewport, selected; null if there is none.
    QTextCursor pillAt(QPoint point) const;
    bool showValueAt(QPoint point, QPoint globalPoint) const;
    void paintTypedToken(QPainter &painter, const FieldPiece &piece) const;

    QSet<QString> m_vocabulary;
    QStringList m_textTokens;
    QList<FieldPiece> m_typedTokens; // literal texts that are expanded
    bool m_isShowingPieces = false;
    bool m_acceptsLineBreaks = true;
    QTextCursor m_pressedPill;
    TokenValue m_valueOnPhoto;
    TokenMenu m_menu;
    TokenFieldPill *m_pill;             // own
    TokenFieldCompletion *m_completion; // own
    QPointer<QPushButton> m_insertPopUpButton;
};

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/editors/tokenfieldwithinsertpopup.h"

#include "ui/editors/tokenfieldaccessible.h"
#include "ui/editors/tokenfieldcompletion.h"
#include "ui/editors/tokenfieldpill.h"
#include "ui/widgets/plaintooltip.h"

#include <QAbstractTextDocumentLayout>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QPainter>
#include <QPushButton>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextLayout>
#include <QToolTip>

#include <algorithm>
#include <cmath>
#include <memory>

namespace plexa
{
namespace
{

constexpr int kFewestLines = 2;
constexpr int kUsualLines = 3;
constexpr int kNameLines = 2;    // of a text without line breaks
constexpr int kMargin = 4;       // around the text
constexpr int kLineDistance = 4; // pills of two lines do not touch
constexpr int kLongWord = 1000;  // characters

bool hasLongWord(const QString &text)
{
    qsizetype length = 0;
    return std::any_of(text.begin(), text.end(), [&length](QChar character) {
        length = character.isSpace() ? 0 : length + 1;
        return length > kLongWord;
    });
}

} // namespace

TokenFieldWithInsertPopup::TokenFieldWithInsertPopup(QWidget *parent)
    : QTextEdit(parent)
    , m_pill(new TokenFieldPill(*this))
    , m_completion(new TokenFieldCompletion(*this))
{
    TokenFieldAccessible::install();
    setTabChangesFocus(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAccessibleName(tr("Text with tokens"));
    setToolTip(tr("Text and tokens. Type { for a list of the tokens."));
    document()->setDocumentMargin(kMargin);
    showPieces({});
    connect(document(), &QTextDocument::contentsChanged, this, &TokenFieldWithInsertPopup::documentChanged);
    connect(m_completion, &TokenFieldCompletion::chosen, this, &TokenFieldWithInsertPopup::insertToken);
    connect(&m_menu, &TokenMenu::tokenChosen, this, &TokenFieldWithInsertPopup::insertToken);
}

void TokenFieldWithInsertPopup::setVocabulary(const TokenGroups &groups)
{
    QStringList names;
    for (const TokenGroup &group : groups)
        names += group.names;
    m_vocabulary = QSet<QString>(names.begin(), names.end());
    m_completion->setNames(names);
    m_menu.setGroups(groups);
    showPieces(fieldPieces(m_textTokens, m_vocabulary));
}

void TokenFieldWithInsertPopup::setInsertPopUpButton(QPushButton *button)
{
    m_insertPopUpButton = button;
    button->setMenu(&m_menu);
}

void TokenFieldWithInsertPopup::setValueOnPhoto(const TokenValue &value)
{
    m_valueOnPhoto = value;
    m_menu.setValueOnPhoto(value);
    m_completion->setValueOnPhoto(value);
}

void TokenFieldWithInsertPopup::setAcceptsLineBreaks(bool accepts)
{
    m_acceptsLineBreaks = accepts;
    updateGeometry();
}

void TokenFieldWithInsertPopup::setTextTokens(const QStringList &textTokens)
{
    if (textTokens == m_textTokens)
        return;
    m_textTokens = textTokens;
    const QList<FieldPiece> pieces = fieldPieces(textTokens, m_vocabulary);
    const QList<FieldPiece> shown = shownPieces();
    const bool isShown = std::equal(pieces.begin(), pieces.end(), shown.begin(), shown.end(),
                                    [](const FieldPiece &a, const FieldPiece &b) { return a.isSameAs(b); });
    if (!isShown)
        showPieces(pieces);
}

void TokenFieldWithInsertPopup::showPieces(const QList<FieldPiece> &pieces)
{
    const int caret = textCursor().position();
    m_isShowingPieces = true;
    m_completion->close();
    setUndoRedoEnabled(false); // clears the history
    clear();
    QTextCursor cursor(document());
    QTextBlockFormat format;
    format.setLineHeight(heightOfLine(), QTextBlockFormat::MinimumHeight);
    cursor.setBlockFormat(format);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    insert(cursor, pieces);
    setUndoRedoEnabled(true);
    m_isShowingPieces = false;
    if (hasFocus()) { // a shortened text, for example
        cursor.setPosition(std::min(caret, cursor.position()));
        setTextCursor(cursor);
    }
    documentChanged();
}

void TokenFieldWithInsertPopup::insert(QTextCursor &cursor, const QList<FieldPiece> &pieces)
{
    // The layout of one word takes a time that grows with the square of its length if it seeks its end.
    if (std::any_of(pieces.begin(), pieces.end(),
                    [](const FieldPiece &piece) { return hasLongWord(piece.text); }))
        setWordWrapMode(QTextOption::WrapAnywhere);
    insertPieces(cursor, pieces);
    setTextCursor(cursor);
}

QList<FieldPiece> TokenFieldWithInsertPopup::shownPieces() const
{
    return readPieces(*document(), 0, document()->characterCount() - 1);
}

void TokenFieldWithInsertPopup::documentChanged()
{
    if (m_isShowingPieces)
        return;
    const QList<FieldPiece> pieces = shownPieces();
    const bool hadTypedTokens = !m_typedTokens.isEmpty();
    m_typedTokens.clear();
    std::copy_if(pieces.begin(), pieces.end(), std::back_inserter(m_typedTokens),
                 [&](const FieldPiece &piece) {
                     return !piece.isPill && !piece.staysText && m_vocabulary.contains(piece.text);
                 });
    if (hadTypedTokens || !m_typedTokens.isEmpty())
        viewport()->update();
    const QStringList shown = textTokensOf(pieces, m_vocabulary);
    if (shown == textTokensOf(fieldPieces(m_textTokens, m_vocabulary), m_vocabulary))
        return;
    m_textTokens = shown;
    Q_EMIT textTokensChanged(shown);
}

void TokenFieldWithInsertPopup::insertToken(const QString &name)
{
    if (!m_vocabulary.contains(name) || isReadOnly())
        return;
    QTextCursor cursor = textCursor();
    insert(cursor, {{name, true}});
    setFocus(Qt::OtherFocusReason);
}

qreal TokenFieldWithInsertPopup::heightOfLine() const
{
    return QFontMetricsF(document()->defaultFont()).height() + kLineDistance;
}

int TokenFieldWithInsertPopup::heightOfLines(int lines) const
{
    return static_cast<int>(std::ceil(lines * heightOfLine())) + 2 * (kMargin + frameWidth());
}

QSize TokenFieldWithInsertPopup::sizeHint() const
{
    return {240, heightOfLines(m_acceptsLineBreaks ? kUsualLines : kNameLines)};
}

QSize TokenFieldWithInsertPopup::minimumSizeHint() const
{
    return {120, heightOfLines(m_acceptsLineBreaks ? kFewestLines : kNameLines)};
}

bool TokenFieldWithInsertPopup::canInsertFromMimeData(const QMimeData *source) const
{
    return source && holdsPieces(*source);
}

QMimeData *TokenFieldWithInsertPopup::createMimeDataFromSelection() const
{
    const QTextCursor cursor = textCursor();
    return piecesToMimeData(readPieces(*document(), cursor.selectionStart(), cursor.selectionEnd()));
}

void TokenFieldWithInsertPopup::insertFromMimeData(const QMimeData *source)
{
    if (!canInsertFromMimeData(source) || isReadOnly())
        return;
    QTextCursor cursor = textCursor();
    QList<FieldPiece> pieces = piecesFromMimeData(*source, m_vocabulary);
    if (!m_acceptsLineBreaks) {
        for (FieldPiece &piece : pieces)
            piece.text.replace(u'\n', u' ');
    }
    insert(cursor, pieces);
}

/// Without a history of its own, the field leaves undo and redo to the window.
bool TokenFieldWithInsertPopup::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride && !document()->isUndoAvailable() &&
        !document()->isRedoAvailable()) {
        const auto &key = static_cast<const QKeyEvent &>(*event);
        if (key.matches(QKeySequence::Undo) || key.matches(QKeySequence::Redo)) {
            event->ignore();
            return true;
        }
    }
    return QTextEdit::event(event);
}

void TokenFieldWithInsertPopup::keyPressEvent(QKeyEvent *event)
{
    if (m_completion->keyPressed(*event)) {
        event->accept();
        return;
    }
    if (!m_acceptsLineBreaks && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)) {
        event->ignore();
        return;
    }
    QTextEdit::keyPressEvent(event);
    // Shortcuts have texts of control characters.
    m_completion->keyHandled(!event->text().isEmpty() && event->text().front().isPrint());
}

bool TokenFieldWithInsertPopup::focusNextPrevChild(bool next)
{
    return !m_completion->isOpen() && QTextEdit::focusNextPrevChild(next); // Tab chooses a name
}

void TokenFieldWithInsertPopup::inputMethodEvent(QInputMethodEvent *event)
{
    if (QString text = event->commitString(); !m_acceptsLineBreaks && text.contains(u'\n'))
        event->setCommitString(text.replace(u'\n', u' '), event->replacementStart(),
                               event->replacementLength());
    QTextEdit::inputMethodEvent(event);
    m_completion->keyHandled(!event->commitString().isEmpty());
}

QTextCursor TokenFieldWithInsertPopup::pillAt(QPoint point) const
{
    const QPointF place = point + QPoint(0, verticalScrollBar()->value());
    const int hit = document()->documentLayout()->hitTest(place, Qt::ExactHit);
    for (int position = std::max(hit - 1, 0); position <= hit && position + 1 < document()->characterCount();
         ++position) {
        QTextCursor pill(document());
        pill.setPosition(position);
        pill.setPosition(position + 1, QTextCursor::KeepAnchor);
        if (!pillName(pill.charFormat()).isEmpty() && extentOf(pill).contains(place.x()))
            return pill;
    }
    return {};
}

TokenFieldWithInsertPopup::Extent TokenFieldWithInsertPopup::extentOf(const QTextCursor &pill) const
{
    const QTextBlock block = document()->findBlock(pill.anchor());
    const int start = pill.anchor() - block.position();
    const QTextLine line = block.layout()->lineForTextPosition(start);
    const qreal width = m_pill->intrinsicSize(document(), pill.anchor(), pill.charFormat()).width();
    const qreal first = line.cursorToX(start) + document()->documentLayout()->blockBoundingRect(block).left();
    const qreal step = line.cursorToX(start + 1) - line.cursorToX(start);
    // Between texts of different directions, the next character is elsewhere and the pill has the direction
    // of the paragraph.
    const bool isRegular = std::abs(std::abs(step) - width) < 1;
    const bool isRightToLeft = isRegular ? step < 0 : block.textDirection() == Qt::RightToLeft;
    return isRightToLeft ? Extent{first - width, first} : Extent{first, first + width};
}

void TokenFieldWithInsertPopup::mousePressEvent(QMouseEvent *event)
{
    m_completion->close();
    m_pressedPill = QTextCursor();
    if (event->button() == Qt::LeftButton && !(event->modifiers() & Qt::ShiftModifier)) {
        m_pressedPill = pillAt(event->position().toPoint());
        const QTextCursor selection = textCursor();
        const bool isSelected = m_pressedPill.selectionStart() >= selection.selectionStart() &&
                                m_pressedPill.selectionEnd() <= selection.selectionEnd();
        if (!m_pressedPill.isNull() && !isSelected)
            setTextCursor(m_pressedPill); // a drag from here moves the pill
    }
    QTextEdit::mousePressEvent(event);
}

void TokenFieldWithInsertPopup::mouseReleaseEvent(QMouseEvent *event)
{
    QTextEdit::mouseReleaseEvent(event);
    const QTextCursor pill = std::exchange(m_pressedPill, QTextCursor());
    if (!pill.isNull() && pill == pillAt(event->position().toPoint()) && !textCursor().hasSelection())
        setTextCursor(pill); // a click selects it
}

void TokenFieldWithInsertPopup::mouseDoubleClickEvent(QMouseEvent *event)
{
    const QTextCursor pill = pillAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton && !pill.isNull())
        setTextCursor(pill);
    else
        QTextEdit::mouseDoubleClickEvent(event);
}

/// From now on what was edited is one step of the window (EditRuns).
void TokenFieldWithInsertPopup::focusOutEvent(QFocusEvent *event)
{
    m_completion->close();
    if (event->reason() != Qt::PopupFocusReason)
        document()->clearUndoRedoStacks();
    QTextEdit::focusOutEvent(event);
}

void TokenFieldWithInsertPopup::contextMenuEvent(QContextMenuEvent *event)
{
    const std::unique_ptr<QMenu> menu(createStandardContextMenu(event->pos()));
    if (!isReadOnly()) {
        menu->addSeparator();
        m_menu.setTitle(tr("Insert Token"));
        menu->addMenu(&m_menu);
    }
    menu->exec(event->globalPos());
}

void TokenFieldWithInsertPopup::paintEvent(QPaintEvent *event)
{
    {
        QPainter painter(viewport());
        // The placeholder text of the base class ignores the height of the lines.
        if (document()->isEmpty() && document()->firstBlock().layout()->preeditAreaText().isEmpty()) {
            painter.setPen(palette().color(QPalette::PlaceholderText));
            painter.drawText(QRect(cursorRect().topLeft(), viewport()->rect().bottomRight()),
                             Qt::AlignLeft | Qt::TextWordWrap, tr("Type a text, or { for a token"));
        }
        painter.translate(0, -verticalScrollBar()->value());
        for (const FieldPiece &piece : m_typedTokens)
            paintTypedToken(painter, piece);
    }
    QTextEdit::paintEvent(event);
}

void TokenFieldWithInsertPopup::paintTypedToken(QPainter &painter, const FieldPiece &piece) const
{
    const QTextBlock block = document()->findBlock(piece.position);
    const QPointF origin = document()->documentLayout()->blockBoundingRect(block).topLeft();
    const int start = piece.position - block.position();
    const int end = start + static_cast<int>(piece.text.size());
    for (int i = 0; i < block.layout()->lineCount(); ++i) {
        const QTextLine line = block.layout()->lineAt(i);
        const int from = std::max(start, line.textStart());
        const int to = std::min(end, line.textStart() + line.textLength());
        if (from >= to)
            continue;
        const qreal a = line.cursorToX(from);
        const qreal b = line.cursorToX(to);
        const QRectF body(std::min(a, b) - 2, line.y(), std::abs(b - a) + 4, line.ascent() + line.descent());
        m_pill->drawBody(painter, body.translated(origin), m_pill->colors(false));
    }
}

void TokenFieldWithInsertPopup::showEvent(QShowEvent *event)
{
    Q_ASSERT_X(m_insertPopUpButton, "showEvent",
               "No insertion popup button is assigned to a TokenFieldWithInsertPopup");
    QTextEdit::showEvent(event);
}

bool TokenFieldWithInsertPopup::viewportEvent(QEvent *event)
{
    if (event->type() == QEvent::ToolTip && m_valueOnPhoto) {
        const auto &help = static_cast<const QHelpEvent &>(*event);
        if (showValueAt(help.pos(), help.globalPos()))
            return true;
    }
    return QTextEdit::viewportEvent(event);
}

bool TokenFieldWithInsertPopup::showValueAt(QPoint point, QPoint globalPoint) const
{
    const QTextCursor pill = pillAt(point);
    if (pill.isNull())
        return false;
    const std::optional<QString> value = m_valueOnPhoto(pillName(pill.charFormat()));
    QToolTip::showText(globalPoint, plainToolTip(value.value_or(tr("The current photo lacks this value."))),
                       viewport());
    return true;
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/editors/tokenfieldaccessible.h"

#include "ui/editors/tokenfieldtext.h"
#include "ui/editors/tokenfieldwithinsertpopup.h"

#include <QScrollBar>
#include <QTextDocument>

#include <algorithm>

namespace plexa
{
namespace
{

int lengthInDocument(const FieldPiece &piece)
{
    return piece.isPill ? 1 : static_cast<int>(piece.text.size());
}

int lengthInText(const FieldPiece &piece)
{
    return static_cast<int>(piece.text.size()) + (piece.isPill ? 2 : 0);
}

QAccessibleInterface *interfaceOf(const QString &, QObject *object)
{
    auto *const field = qobject_cast<TokenFieldWithInsertPopup *>(object);
    return field ? new TokenFieldAccessible(*field) : nullptr;
}

} // namespace

TokenFieldAccessible::TokenFieldAccessible(TokenFieldWithInsertPopup &field)
    : QAccessibleWidget(&field, QAccessible::EditableText)
    , m_field(field)
{
}

void TokenFieldAccessible::install()
{
    static const bool isInstalled = [] {
        QAccessible::installFactory(interfaceOf);
        return true;
    }();
    Q_UNUSED(isInstalled);
}

void *TokenFieldAccessible::interface_cast(QAccessible::InterfaceType type)
{
    if (type == QAccessible::TextInterface)
        return static_cast<QAccessibleTextInterface *>(this);
    if (type == QAccessible::EditableTextInterface)
        return static_cast<QAccessibleEditableTextInterface *>(this);
    return QAccessibleWidget::interface_cast(type);
}

QString TokenFieldAccessible::text(QAccessible::Text kind) const
{
    return kind == QAccessible::Value ? wholeText() : QAccessibleWidget::text(kind);
}

QAccessible::State TokenFieldAccessible::state() const
{
    QAccessible::State state = QAccessibleWidget::state();
    state.multiLine = true;
    state.selectableText = true;
    state.editable = !m_field.isReadOnly();
    state.readOnly = m_field.isReadOnly();
    return state;
}

QString TokenFieldAccessible::wholeText() const
{
    return plainTextOf(m_field.shownPieces());
}

int TokenFieldAccessible::offsetOf(int position) const
{
    int offset = 0;
    for (const FieldPiece &piece : m_field.shownPieces()) {
        if (position < piece.position + lengthInDocument(piece))
            return offset + std::max(position - piece.position, 0);
        offset += lengthInText(piece);
    }
    return offset;
}

int TokenFieldAccessible::positionOf(int offset) const
{
    for (const FieldPiece &piece : m_field.shownPieces()) {
        if (offset < lengthInText(piece)) // inside of a pill: after it
            return piece.position + (piece.isPill ? std::clamp(offset, 0, 1) : std::max(offset, 0));
        offset -= lengthInText(piece);
    }
    return m_field.document()->characterCount() - 1;
}

QString TokenFieldAccessible::text(int start, int end) const
{
    return wholeText().mid(start, end - start);
}

int TokenFieldAccessible::characterCount() const
{
    return static_cast<int>(wholeText().size());
}

int TokenFieldAccessible::cursorPosition() const
{
    return offsetOf(m_field.textCursor().position());
}

void TokenFieldAccessible::setCursorPosition(int offset)
{
    select(offset, offset);
}

void TokenFieldAccessible::select(int start, int end)
{
    QTextCursor cursor = m_field.textCursor();
    cursor.setPosition(positionOf(start));
    cursor.setPosition(positionOf(end), QTextCursor::KeepAnchor);
    m_field.setTextCursor(cursor);
}

int TokenFieldAccessible::selectionCount() const
{
    return m_field.textCursor().hasSelection() ? 1 : 0;
}

void TokenFieldAccessible::selection(int index, int *start, int *end) const
{
    const QTextCursor cursor = m_field.textCursor();
    const bool isSelection = index == 0 && cursor.hasSelection();
    *start = isSelection ? offsetOf(cursor.selectionStart()) : 0;
    *end = isSelection ? offsetOf(cursor.selectionEnd()) : 0;
}

void TokenFieldAccessible::addSelection(int start, int end)
{
    select(start, end);
}

void TokenFieldAccessible::setSelection(int, int start, int end)
{
    select(start, end);
}

void TokenFieldAccessible::removeSelection(int)
{
    setCursorPosition(cursorPosition());
}

QRect TokenFieldAccessible::characterRect(int offset) const
{
    QTextCursor cursor(m_field.document());
    cursor.setPosition(positionOf(offset));
    QRect area = m_field.cursorRect(cursor);
    cursor.movePosition(QTextCursor::NextCharacter);
    const QRect next = m_field.cursorRect(cursor);
    if (next.top() == area.top())
        area = area.united(next);
    return area.translated(m_field.viewport()->mapToGlobal(QPoint()));
}

int TokenFieldAccessible::offsetAtPoint(const QPoint &point) const
{
    return offsetOf(m_field.cursorForPosition(m_field.viewport()->mapFromGlobal(point)).position());
}

void TokenFieldAccessible::scrollToSubstring(int start, int)
{
    QTextCursor cursor(m_field.document());
    cursor.setPosition(positionOf(start));
    const QRect area = m_field.cursorRect(cursor);
    if (!m_field.viewport()->rect().contains(area))
        m_field.verticalScrollBar()->setValue(m_field.verticalScrollBar()->value() + area.top());
}

QString TokenFieldAccessible::attributes(int, int *start, int *end) const
{
    *start = 0;
    *end = characterCount();
    return {};
}

void TokenFieldAccessible::deleteText(int start, int end)
{
    replaceText(start, end, {});
}

void TokenFieldAccessible::insertText(int offset, const QString &text)
{
    replaceText(offset, offset, text);
}

void TokenFieldAccessible::replaceText(int start, int end, const QString &text)
{
    if (m_field.isReadOnly())
        return;
    select(start, end);
    m_field.insertPlainText(fieldText(text));
}

} // namespace plexa

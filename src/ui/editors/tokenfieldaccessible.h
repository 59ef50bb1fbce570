// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QAccessibleWidget>

namespace plexa
{

struct FieldPiece;
class TokenFieldWithInsertPopup;

/// A token field as screen readers see it: one text in which a pill is the name of its token in braces.
/// Offsets are in that text.
class TokenFieldAccessible final : public QAccessibleWidget,
                                   public QAccessibleTextInterface,
                                   public QAccessibleEditableTextInterface
{
public:
    explicit TokenFieldAccessible(TokenFieldWithInsertPopup &field);

    /// Makes Qt use this class for all token fields.
    static void install();

    void *interface_cast(QAccessible::InterfaceType type) override;
    QString text(QAccessible::Text kind) const override;
    QAccessible::State state() const override;

    QString text(int start, int end) const override;
    int characterCount() const override;
    int cursorPosition() const override;
    void setCursorPosition(int offset) override;
    int selectionCount() const override;
    void selection(int index, int *start, int *end) const override;
    void addSelection(int start, int end) override;
    void setSelection(int index, int start, int end) override;
    void removeSelection(int index) override;
    QRect characterRect(int offset) const override;
    int offsetAtPoint(const QPoint &point) const override;
    void scrollToSubstring(int start, int end) override;
    QString attributes(int offset, int *start, int *end) const override;

    void deleteText(int start, int end) override;
    void insertText(int offset, const QString &text) override;
    void replaceText(int start, int end, const QString &text) override;

private:
    QString wholeText() const;
    int offsetOf(int position) const;
    int positionOf(int offset) const;
    void select(int start, int end);

    TokenFieldWithInsertPopup &m_field;
};

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QColor>
#include <QObject>
#include <QPalette>
#include <QTextObjectInterface>

class QPainter;
class QTextEdit;

namespace plexa
{

/// The colors of one pill. The text has a contrast of at least 4.5 to 1, unless the group is disabled.
struct PillColors {
    QColor fill;
    QColor outline;
    QColor text;
};

PillColors pillColors(const QPalette &palette, QPalette::ColorGroup group, bool isSelected);

/// Draws the tokens of a text field as rounded pills, each one character of the document.
class TokenFieldPill final : public QObject, public QTextObjectInterface
{
    Q_OBJECT
    Q_INTERFACES(QTextObjectInterface)

public:
    /// @param field  the owner; the pills of its document are drawn from now on
    explicit TokenFieldPill(QTextEdit &field);

    QSizeF intrinsicSize(QTextDocument *document, int position, const QTextFormat &format) override;
    void drawObject(QPainter *painter, const QRectF &area, QTextDocument *document, int position,
                    const QTextFormat &format) override;

    /// The body of a pill without its text.
    void drawBody(QPainter &painter, const QRectF &area, const PillColors &colors) const;

    PillColors colors(bool isSelected) const;

private:
    QTextEdit &m_field;
};

} // namespace plexa

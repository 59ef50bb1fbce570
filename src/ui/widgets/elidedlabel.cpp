// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/widgets/elidedlabel.h"

#include <QPainter>
#include <QStyle>

namespace plexa
{

ElidedLabel::ElidedLabel(Qt::TextElideMode mode, QWidget *parent)
    : QWidget(parent)
    , m_mode(mode)
{
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void ElidedLabel::setText(const QString &text)
{
    m_text = text;
    setAccessibleName(text);
    updateGeometry();
    update();
}

QSize ElidedLabel::sizeHint() const
{
    return {fontMetrics().horizontalAdvance(m_text) + 2, fontMetrics().height()};
}

QSize ElidedLabel::minimumSizeHint() const
{
    return {0, fontMetrics().height()};
}

void ElidedLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    // In the direction of the text: a path in a window that is laid out from right to left keeps its order.
    const Qt::Alignment side = QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft);
    painter.setLayoutDirection(m_text.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    painter.drawText(rect(), int(side | Qt::AlignAbsolute | Qt::AlignVCenter) | Qt::TextSingleLine,
                     fontMetrics().elidedText(m_text, m_mode, width()));
}

} // namespace plexa

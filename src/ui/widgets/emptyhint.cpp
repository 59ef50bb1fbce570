// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/widgets/emptyhint.h"

#include "ui/widgets/look.h"

#include <QPainter>
#include <QWidget>

namespace plexa
{

void paintEmptyHint(QWidget *widget, const QString &text)
{
    QPainter painter(widget);
    QFont font = widget->font();
    font.setPointSizeF(18);
    painter.setFont(font);
    painter.setPen(look::kHintText);
    painter.drawText(widget->rect().adjusted(12, 12, -12, -12), Qt::AlignCenter | Qt::TextWordWrap, text);
}

} // namespace plexa

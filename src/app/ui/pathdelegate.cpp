// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/ui/pathdelegate.h"

#include <QPainter>

namespace plexa
{

namespace
{

constexpr int kMargin = 12;

} // namespace

void PathDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                         const QModelIndex &index) const
{
    if (option.state.testFlag(QStyle::State_Selected))
        painter->fillRect(option.rect, QColor(255, 255, 255, 153)); // white, 0.6
    const QString path = index.data().toString();
    const qsizetype nameAt = path.lastIndexOf(QLatin1Char('/')) + 1;
    const QRect room = option.rect.adjusted(kMargin, 0, -kMargin, 0);
    const QFontMetrics &metrics = option.fontMetrics;
    const QString name = metrics.elidedText(path.mid(nameAt), Qt::ElideMiddle, room.width());
    const int nameWidth = metrics.horizontalAdvance(name);
    const QString folder = metrics.elidedText(path.left(nameAt), Qt::ElideLeft, room.width() - nameWidth);

    const int align = Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine;
    QColor color = option.palette.color(QPalette::Text);
    painter->save();
    painter->setFont(option.font);
    painter->setPen(color);
    const int folderWidth = metrics.horizontalAdvance(folder);
    painter->drawText(room.adjusted(folderWidth, 0, 0, 0), align, name);
    color.setAlphaF(0.6F);
    painter->setPen(color);
    painter->drawText(room, align, folder);
    painter->restore();
}

} // namespace plexa

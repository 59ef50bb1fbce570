// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/browser/pathdelegate.h"

#include <QGuiApplication>
#include <QLineEdit>
#include <QPainter>
#include <QRegularExpressionValidator>

namespace plexa
{

namespace
{

constexpr int kMargin = 12;
constexpr int kEditorMargin = 4; // between a line edit's edge and its text
constexpr int kMinEditorWidth = 220;

/// A path shortened to a width.
struct ShownPath {
    QString folder;
    QString name;
    int folderWidth;

    ShownPath(const QString &path, const QFontMetrics &metrics, int width)
    {
        const qsizetype nameAt = path.lastIndexOf(QLatin1Char('/')) + 1;
        name = metrics.elidedText(path.mid(nameAt), Qt::ElideMiddle, width);
        folder =
            metrics.elidedText(path.left(nameAt), Qt::ElideLeft, width - metrics.horizontalAdvance(name));
        folderWidth = metrics.horizontalAdvance(folder);
    }
};

QRect roomIn(const QStyleOptionViewItem &option)
{
    return option.rect.adjusted(kMargin, 0, -kMargin, 0);
}

} // namespace

void PathDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                         const QModelIndex &index) const
{
    if (option.state.testFlag(QStyle::State_Selected))
        painter->fillRect(option.rect, QColor(255, 255, 255, 153)); // white, 0.6
    const QRect room = roomIn(option);
    const ShownPath path(index.data().toString(), option.fontMetrics, room.width());

    const int align = Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine;
    QColor color = option.palette.color(QPalette::Text);
    painter->save();
    painter->setFont(option.font);
    painter->setPen(color);
    painter->drawText(room.adjusted(path.folderWidth, 0, 0, 0), align, path.name);
    color.setAlphaF(0.6F);
    painter->setPen(color);
    painter->drawText(room, align, path.folder);
    if (option.state.testFlag(QStyle::State_HasFocus)) { // the current row need not be selected
        painter->setPen(option.palette.color(QPalette::Link));
        painter->drawRect(option.rect.adjusted(0, 0, -1, -1));
    }
    painter->restore();
}

QWidget *PathDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &, const QModelIndex &) const
{
    auto *const editor = new QLineEdit(parent);
    editor->setPalette(QGuiApplication::palette()); // not the palette of a view that marks rows itself
    editor->setValidator(
        new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[^/]*")), editor));
    editor->setMaxLength(255);
    return editor;
}

void PathDelegate::updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                                        const QModelIndex &index) const
{
    const QRect room = roomIn(option);
    const ShownPath path(index.data().toString(), option.fontMetrics, room.width());
    const int width = std::min(room.width(), std::max(kMinEditorWidth, room.width() - path.folderWidth));
    editor->setGeometry(room.right() + 1 - width - kEditorMargin, option.rect.y(), width + kEditorMargin,
                        option.rect.height());
}

} // namespace plexa

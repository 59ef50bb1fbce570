// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/ui/presetlistview.h"

#include "app/ui/presetlistmodel.h"

#include <QDropEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QStyledItemDelegate>

#include <algorithm>

namespace plexa
{

namespace
{

/// Rows with some air.
class RowDelegate final : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        const QSize size = QStyledItemDelegate::sizeHint(option, index);
        return {size.width(), option.fontMetrics.height() + 8};
    }
};

} // namespace

PresetListView::PresetListView(PresetListModel &model, QWidget *parent)
    : QListView(parent)
    , m_model(model)
{
    setModel(&model);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(NoEditTriggers);
    setItemDelegate(new RowDelegate(this));
    setUniformItemSizes(true);
    setAlternatingRowColors(true);
    setTextElideMode(Qt::ElideRight);
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &PresetListView::selectedRowsChanged);
}

void PresetListView::setAllowsReordering()
{
    m_model.setAllowsReordering(true);
    setDragDropMode(InternalMove);
    setDropIndicatorShown(true);
}

IndexList PresetListView::selectedRows() const
{
    IndexList rows;
    for (const QModelIndex &index : selectionModel()->selectedRows())
        rows.append(index.row());
    std::sort(rows.begin(), rows.end());
    return rows;
}

void PresetListView::selectRows(const IndexList &rows)
{
    if (rows == selectedRows())
        return;
    QItemSelection selection;
    for (const int row : rows)
        selection.select(m_model.index(row), m_model.index(row));
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    if (!rows.isEmpty())
        selectionModel()->setCurrentIndex(m_model.index(rows.first()), QItemSelectionModel::NoUpdate);
}

void PresetListView::paintEvent(QPaintEvent *event)
{
    QListView::paintEvent(event);
    if (m_model.rowCount() > 0 || m_emptyHint.isEmpty())
        return;
    QPainter painter(viewport());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(viewport()->rect().adjusted(12, 8, -12, -8), Qt::AlignCenter | Qt::TextWordWrap,
                     m_emptyHint);
}

void PresetListView::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        Q_EMIT deletePressed();
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        Q_EMIT returnPressed();
        return;
    default:
        QListView::keyPressEvent(event);
    }
}

void PresetListView::dropEvent(QDropEvent *event)
{
    // Only this list's own rows are put into another order here.
    const IndexList rows =
        event->source() == this ? PresetListModel::draggedRows(event->mimeData()) : IndexList();
    setState(NoState);
    viewport()->update();
    if (rows.isEmpty()) {
        event->ignore();
        return;
    }
    const QPoint at = event->position().toPoint();
    const QModelIndex index = indexAt(at);
    int toRow = m_model.rowCount();
    if (index.isValid())
        toRow = at.y() < visualRect(index).center().y() ? index.row() : index.row() + 1;
    // The model is asked to move them: nothing is to be removed behind the drag.
    event->setDropAction(Qt::IgnoreAction);
    event->accept();
    Q_EMIT rowsDropped(rows, toRow);
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/widgets/presetlistview.h"

#include "ui/widgets/look.h"
#include "ui/widgets/presetlistmodel.h"

#include <QDrag>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QSortFilterProxyModel>
#include <QStyleOptionFocusRect>
#include <QStyledItemDelegate>

#include <algorithm>

namespace plexa
{

namespace
{

constexpr int kGripWidth = 16;

/// Rows with vertical padding; where they can be reordered, with a grip.
class RowDelegate final : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    bool hasGrip = false;
    int pictureHeight = 0;

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        Q_UNUSED(index)
        return {0, std::max(option.fontMetrics.height(), pictureHeight) + 8}; // long names are elided
    }

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        if (!hasGrip) {
            QStyledItemDelegate::paint(painter, option, index);
            return;
        }
        // The ground of the whole row, then its contents beside the grip.
        QStyleOptionViewItem row = option;
        initStyleOption(&row, index);
        QStyle &style = *option.widget->style();
        style.drawPrimitive(QStyle::PE_PanelItemViewItem, &row, painter, option.widget);
        const bool isLeftToRight = option.direction == Qt::LeftToRight;
        QStyleOptionViewItem contents = option;
        contents.rect.adjust(isLeftToRight ? kGripWidth : 0, 0, isLeftToRight ? 0 : -kGripWidth, 0);
        QStyledItemDelegate::paint(painter, contents, index);
        const int left = isLeftToRight ? option.rect.left() : option.rect.right() + 1 - kGripWidth;
        paintGrip(*painter, QRect(left, option.rect.top(), kGripWidth, option.rect.height()));
    }

protected:
    /// The model's color remains when the row is selected.
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        const QVariant color = index.data(Qt::ForegroundRole);
        if (color.isValid())
            option->palette.setColor(QPalette::HighlightedText, color.value<QColor>());
    }

private:
    /// Two columns of three dots.
    static void paintGrip(QPainter &painter, const QRect &place)
    {
        constexpr int kDot = 2;
        constexpr int kStep = 4;
        const QPoint first = place.center() - QPoint(kStep / 2, kStep);
        for (int i = 0; i < 6; ++i)
            painter.fillRect(QRect(first + kStep * QPoint(i % 2, i / 2), QSize(kDot, kDot)),
                             look::kControlBorder.darker(130));
    }
};

RowDelegate &rowDelegateOf(const QListView &view)
{
    return *static_cast<RowDelegate *>(view.itemDelegate());
}

constexpr int kDragImageWidth = 200;
constexpr QPoint kDragImageOffset(14, 10); // beside the pointer, so that the drop position is visible

} // namespace

PresetListView::PresetListView(PresetRowsModel &model, QWidget *parent)
    : QListView(parent)
    , m_model(model)
    , m_shown(new QSortFilterProxyModel(this))
{
    m_shown->setSourceModel(&model);
    m_shown->setFilterCaseSensitivity(Qt::CaseInsensitive);
    setModel(m_shown);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(NoEditTriggers);
    setItemDelegate(new RowDelegate(this));
    setUniformItemSizes(true);
    setAlternatingRowColors(true);
    setTextElideMode(Qt::ElideRight);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &PresetListView::selectedRowsChanged);
}

void PresetListView::setAllowsReordering()
{
    m_model.setAllowsReordering(true);
    setDragDropMode(DragDrop);
    setDropIndicatorShown(true);
    rowDelegateOf(*this).hasGrip = true;
}

void PresetListView::setAllowsDragging()
{
    m_model.setAllowsReordering(true);
    setDragDropMode(DragOnly);
}

void PresetListView::setPictureSize(QSize size)
{
    setIconSize(size);
    rowDelegateOf(*this).pictureHeight = size.height();
}

void PresetListView::setSearchText(const QString &text)
{
    m_shown->setFilterFixedString(text);
}

int PresetListView::rowOf(const QModelIndex &index) const
{
    return m_shown->mapToSource(index).row();
}

IndexList PresetListView::selectedRows() const
{
    IndexList rows;
    for (const QModelIndex &index : selectionModel()->selectedRows())
        rows.append(rowOf(index));
    std::sort(rows.begin(), rows.end());
    return rows;
}

void PresetListView::selectRows(const IndexList &rows)
{
    if (rows == selectedRows())
        return;
    QItemSelection selection;
    QModelIndex first;
    for (const int row : rows) {
        const QModelIndex index = m_shown->mapFromSource(m_model.index(row));
        selection.select(index, index);
        if (!first.isValid())
            first = index;
    }
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    if (!first.isValid())
        return;
    m_keepsSelection = true;
    setCurrentIndex(first); // a range that is selected next begins there
    m_keepsSelection = false;
}

void PresetListView::selectAnyRow()
{
    if (selectedRows().isEmpty() && m_shown->rowCount() > 0)
        selectRows({rowOf(m_shown->index(0, 0))});
}

QItemSelectionModel::SelectionFlags PresetListView::selectionCommand(const QModelIndex &index,
                                                                     const QEvent *event) const
{
    return m_keepsSelection ? QItemSelectionModel::NoUpdate : QListView::selectionCommand(index, event);
}

void PresetListView::paintEvent(QPaintEvent *event)
{
    QListView::paintEvent(event);
    if (m_shown->rowCount() > 0)
        return;
    QPainter painter(viewport());
    if (hasFocus()) { // no row can show it
        QStyleOptionFocusRect option;
        option.initFrom(viewport());
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, viewport());
    }
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(viewport()->rect().adjusted(12, 8, -12, -8), Qt::AlignCenter | Qt::TextWordWrap,
                     m_model.rowCount() > 0 ? tr("No name contains the text") : m_emptyHint);
}

bool PresetListView::event(QEvent *event)
{
    // With the focus here, the shortcut selects all rows, not all photos.
    if (event->type() == QEvent::ShortcutOverride &&
        static_cast<QKeyEvent *>(event)->matches(QKeySequence::SelectAll))
        event->accept();
    return QListView::event(event);
}

void PresetListView::mousePressEvent(QMouseEvent *event)
{
    QListView::mousePressEvent(event);
    Q_EMIT selectedAgain();
}

void PresetListView::keyPressEvent(QKeyEvent *event)
{
    if (event->text() == QLatin1String("/")) { // goes to the search field
        event->ignore();
        return;
    }
    // With modifiers they are shortcuts, which arrive here while their commands are disabled.
    const bool isBare = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    switch (event->key()) {
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        if (isBare)
            Q_EMIT deletePressed();
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        Q_EMIT returnPressed();
        return;
    case Qt::Key_Down:
    case Qt::Key_Home:
        // The focus is on the first row, and would be moved to the second one, or not at all.
        if (isBare && selectedRows().isEmpty() && currentIndex().row() == 0) {
            selectionModel()->select(currentIndex(), QItemSelectionModel::ClearAndSelect);
            return;
        }
        [[fallthrough]];
    case Qt::Key_Up:
    case Qt::Key_End:
    case Qt::Key_Space:
        QListView::keyPressEvent(event);
        Q_EMIT selectedAgain();
        return;
    default:
        QListView::keyPressEvent(event);
    }
}

/// A small label of the dragged rows; the list marks the drop position.
QPixmap PresetListView::dragImage(const IndexList &rows) const
{
    const QString text = rows.size() == 1 ? m_model.index(rows.first()).data().toString()
                                          : tr("%n presets", nullptr, static_cast<int>(rows.size()));
    const QString shown = fontMetrics().elidedText(text, Qt::ElideRight, kDragImageWidth);
    const QSize size(fontMetrics().horizontalAdvance(shown) + 16, fontMetrics().height() + 8);
    QPixmap pixmap(size * devicePixelRatioF());
    pixmap.setDevicePixelRatio(devicePixelRatioF());
    pixmap.fill(palette().color(QPalette::Active, QPalette::Highlight));
    QPainter painter(&pixmap);
    painter.setFont(font());
    painter.setPen(palette().color(QPalette::Active, QPalette::HighlightedText));
    painter.drawText(QRect(QPoint(), size), Qt::AlignCenter | Qt::TextSingleLine, shown);
    return pixmap;
}

void PresetListView::startDrag(Qt::DropActions actions)
{
    const IndexList rows = selectedRows();
    if (rows.isEmpty())
        return;
    auto *const drag = new QDrag(this); // deletes itself
    drag->setMimeData(m_shown->mimeData(selectionModel()->selectedRows()));
    drag->setPixmap(dragImage(rows));
    drag->setHotSpot(-kDragImageOffset);
    drag->exec(actions, Qt::MoveAction);
}

/// Rows of this list, and of the other one if there is one.
bool PresetListView::accepts(const QDropEvent &event) const
{
    const QObject *const source = event.source();
    return source && (source == this || source == m_otherSource);
}

void PresetListView::dragEnterEvent(QDragEnterEvent *event)
{
    if (accepts(*event))
        QListView::dragEnterEvent(event);
    else
        event->ignore();
}

void PresetListView::dragMoveEvent(QDragMoveEvent *event)
{
    if (accepts(*event))
        QListView::dragMoveEvent(event);
    else
        event->ignore();
}

void PresetListView::dropEvent(QDropEvent *event)
{
    const IndexList rows = accepts(*event) ? PresetRowsModel::draggedRows(event->mimeData()) : IndexList();
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
        toRow = rowOf(index) + (at.y() < visualRect(index).center().y() ? 0 : 1);
    // The receiver of the signal moves them, so the drag must not remove any row.
    event->setDropAction(Qt::IgnoreAction);
    event->accept();
    if (event->source() == this)
        Q_EMIT rowsDropped(rows, toRow);
    else
        Q_EMIT otherRowsDropped(rows, toRow);
}

} // namespace plexa

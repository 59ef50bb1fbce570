// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/indexlist.h"

#include <QListView>

class QSortFilterProxyModel;

namespace plexa
{

class PresetRowsModel;

/// A list of presets with multiple selection and a search. Rows can be reordered by dragging where that is
/// allowed. All rows are those of the model, whether the search shows them or not.
class PresetListView final : public QListView
{
    Q_OBJECT

public:
    /// @param model  outlives the view
    explicit PresetListView(PresetRowsModel &model, QWidget *parent = nullptr);

    /// Allows rows to be dragged within this list.
    void setAllowsReordering();

    /// Allows rows to be dragged to a list that accepts them from this one.
    void setAllowsDragging();
    /// Rows of that list may be dropped between those of this one, which allows reordering.
    void acceptDropsFrom(const PresetListView &other) { m_otherSource = &other; }

    /// The room for the pictures of the model, in points.
    void setPictureSize(QSize size);

    /// Shown while the list is empty.
    void setEmptyHint(const QString &hint) { m_emptyHint = hint; }

    /// Shows only the presets whose names contain the text, in letters of either case; empty: all. Presets
    /// that are not shown are not selected.
    void setSearchText(const QString &text);

    /// The row of an item of the view.
    int rowOf(const QModelIndex &index) const;
    /// Ascending.
    IndexList selectedRows() const;
    /// Selects exactly these and scrolls to the first.
    void selectRows(const IndexList &rows);
    /// Selects the first row that the search shows, if none is selected.
    void selectAnyRow();

Q_SIGNALS:
    void selectedRowsChanged();
    /// The user has pressed the mouse or a key for moving on rows that are selected, maybe already before.
    void selectedAgain();
    /// Rows were dropped before the row `toRow`.
    void rowsDropped(const plexa::IndexList &rows, int toRow);
    /// The same with rows of the other list.
    void otherRowsDropped(const plexa::IndexList &rows, int toRow);
    void deletePressed();
    void returnPressed();

protected:
    bool event(QEvent *event) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex &index,
                                                         const QEvent *event) const override;
    void paintEvent(QPaintEvent *event) override;
    void startDrag(Qt::DropActions actions) override;
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    bool accepts(const QDropEvent &event) const;
    QPixmap dragImage(const IndexList &rows) const;

    PresetRowsModel &m_model;
    QSortFilterProxyModel *const m_shown;
    const PresetListView *m_otherSource = nullptr;
    QString m_emptyHint;
    bool m_keepsSelection = false; // when the current row changes
};

} // namespace plexa

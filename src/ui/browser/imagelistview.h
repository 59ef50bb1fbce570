// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QTableView>

class QMenu;

namespace plexa
{

class FontCatalog;
class ImageListModel;
class ImageSet;

/// The photos of Large Batch mode as a table of their paths. Accepts dropped files and shares the selection
/// of the working set.
class ImageListView final : public QTableView
{
    Q_OBJECT

public:
    /// @param set, fonts  outlive the view
    /// @param threads     photos that are loaded at a time for their pictures
    ImageListView(ImageSet &set, const FontCatalog &fonts, int threads, QWidget *parent = nullptr);
    ~ImageListView() override;

    ImageListModel &imageListModel() { return *m_model; }

    /// Opened by a right click; not owned.
    void setContextMenu(QMenu *menu) { m_contextMenu = menu; }

Q_SIGNALS:
    void deletePressed();
    void filesDropped(const QStringList &paths);

protected:
    void paintEvent(QPaintEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void setUpLook();
    void takeSelectionFromSet();
    void giveSelectionToSet();
    void scrollToFirstSelected();

    ImageSet &m_set;
    ImageListModel *const m_model;
    QMenu *m_contextMenu = nullptr;
    bool m_isFollowing = false; // the change comes from the set, not the user
};

} // namespace plexa

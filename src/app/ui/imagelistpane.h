// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QWidget>

class QLineEdit;
class QMenu;
class QStackedWidget;
class QToolButton;

namespace plexa
{

class CommandActions;
class EmptyFrame;
class ImageListView;
class ImageSet;

/// The lower half of the main window's left side: the buttons for the photos, the search field, and the
/// photos as a grid or as a table.
class ImageListPane final : public QWidget
{
    Q_OBJECT

public:
    /// @param set  outlives the pane
    ImageListPane(ImageSet &set, CommandActions &actions, QWidget *parent = nullptr);

    /// Gives the keyboard to the search field and selects its text.
    void startSearch();

    /// What shows the photos in the mode that is on.
    QWidget *shownView() const;

private:
    QWidget *makeButtonRow();
    void connectSet();
    void showMode(bool isBrowser);

    ImageSet &m_set;
    CommandActions &m_actions;
    QLineEdit *const m_searchField;
    QStackedWidget *const m_imageListContainer;
    EmptyFrame *const m_imageBrowserPlace;
    ImageListView *const m_imageListTable;
    QToolButton *m_imageListModeButton = nullptr;
    QMenu *const m_imageMenu;
};

} // namespace plexa

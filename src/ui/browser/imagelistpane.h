// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QWidget>

#include <memory>

class QAbstractButton;
class QLineEdit;
class QMenu;
class QStackedWidget;

namespace plexa
{

class AppController;
class ChoiceButtons;
class CommandActions;
class ImageBrowserView;
class ImageBrowserViewController;
class ImageListView;
class ImageSet;
class MessagePage;
class StatusManager;
class UserDefaults;
class ZoomSlider;

/// The lower half of the main window's left side: the buttons for the photos, the search field, and the
/// photos as a grid or as a table.
class ImageListPane final : public QWidget
{
    Q_OBJECT

public:
    struct Services {
        AppController &controller;
        UserDefaults &defaults;
        CommandActions &actions;
        int threads; ///< photos that are processed at a time
    };

    /// @param services  outlive the pane
    explicit ImageListPane(const Services &services, QWidget *parent = nullptr);
    ~ImageListPane() override;

    ImageBrowserViewController &browserController() { return *m_browserController; }

    /// Moves the keyboard focus to the search field and selects its text.
    void startSearch();

    /// The view of the current mode, or the page in its place while the search finds nothing.
    QWidget *shownView() const;

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    QWidget *makeButtonRow();
    void prepareSearchField();
    ChoiceButtons *makeModeSwitch();
    MessagePage *makeNoMatchPage();
    QWidget *makeZoomRow();
    void connectSet(AppController &controller);
    void connectBrowser();
    void copyImages();
    void showMode(bool isBrowser);
    void showView();
    bool endSearch(int key);

    ImageSet &m_set;
    StatusManager &m_status;
    CommandActions &m_actions;
    QLineEdit *const m_searchField;
    QStackedWidget *const m_imageListContainer;
    ImageBrowserView *const m_imageBrowser;
    ImageListView *const m_imageListTable;
    ZoomSlider *const m_browserZoomSlider;
    ChoiceButtons *m_modeSwitch = nullptr;
    QAbstractButton *m_gridPart = nullptr;
    QAbstractButton *m_listPart = nullptr;
    MessagePage *m_noMatchPage = nullptr;
    QWidget *m_zoomRow = nullptr;
    QMenu *const m_imageMenu;
    const std::unique_ptr<ImageBrowserViewController> m_browserController;
};

} // namespace plexa

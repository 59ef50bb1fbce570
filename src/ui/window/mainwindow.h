// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/commandrules.h"

#include <QMainWindow>
#include <QPointer>

#include <functional>

class QSplitter;
class QStackedWidget;

namespace plexa
{

class Alerts;
class AppController;
class CommandActions;
class DropFrame;
class ImageListPane;
class MessagePage;
class PresetsPanel;
class PreviewPane;
class UserDefaults;

/// The main window: lays out the panes and connects them with the controller.
class MainWindow final : public QMainWindow
{
    Q_OBJECT

public:
    struct Services {
        AppController &controller;
        UserDefaults &defaults;
        Alerts &alerts;
        int threads; ///< photos that are processed at a time
    };

    /// @param services  outlive the window
    explicit MainWindow(const Services &services);
    ~MainWindow() override;

    CommandActions &actions() { return *m_actions; }

    /// Shows the window in front, even if it was closed or minimized.
    void present();

    /// Asked before the window closes; false: it stays. Must not destroy the window.
    void setMayClose(std::function<bool()> mayClose) { m_mayClose = std::move(mayClose); }

Q_SIGNALS:
    /// The user has closed the window; the program keeps running.
    void closed();
    void quitWanted();

protected:
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void makeViews();
    QWidget *makeLeftPanel();
    QWidget *makeRightPanel();
    MessagePage *makeEmptyPage();
    QWidget *makeBottomBar();
    void connectCommands();
    void restoreGeometryFromSettings();
    void rememberGeometry();
    void showPhotos();
    void showSaving(bool isSaving);
    CommandState commandState() const;
    void forwardToImageList(QKeyEvent *event);
    void reportFailedCopies(const QStringList &failures);

    const Services m_services;
    CommandActions *const m_actions;
    ImageListPane *m_imageListPane = nullptr;
    PreviewPane *m_previewPane = nullptr;
    PresetsPanel *m_presetsPanel = nullptr;
    MessagePage *m_emptyPage = nullptr;
    QStackedWidget *m_photosOrEmptyPage = nullptr;
    QSplitter *m_imageViewBrowserSplitView = nullptr;
    QSplitter *m_panelSplitView = nullptr;
    QStackedWidget *m_contentOrSaving = nullptr;
    DropFrame *m_dropFrame = nullptr;
    QPointer<QWidget> m_focusBefore; // while photos are saved
    std::function<bool()> m_mayClose;
};

} // namespace plexa

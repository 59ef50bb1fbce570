// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "watermark/wpreset.h"

#include <QMainWindow>
#include <QPointer>

class QSplitter;

namespace plexa
{

class Alerts;
class ImageBrowserViewController;
class AppController;
class CommandActions;
class ImageListPane;
class PresetsPanel;
class UserDefaults;

/// The one main window: it lays out the views and connects them with the controller, which decides.
class MainWindow final : public QMainWindow
{
    Q_OBJECT

public:
    struct Services {
        AppController &controller;
        UserDefaults &defaults;
        Alerts &alerts;
        int threads; ///< photos that are worked on at a time
    };

    /// @param services  outlive the window
    explicit MainWindow(const Services &services);
    ~MainWindow() override;

    CommandActions &actions() { return *m_actions; }
    ImageBrowserViewController &browser();

    /// While photos are saved nothing about them can be changed. The keyboard comes back with the content.
    void setContentEnabled(bool isEnabled);

    /// All watermark presets, for the list of presets mode.
    void setWPresets(const WPresetList &presets);

    /// The one preset that is selected in that list; null when there is not exactly one.
    std::shared_ptr<WPreset> selectedWPreset() const;

    /// Shows the window, whether it was closed, minimized or behind others.
    void present();

Q_SIGNALS:
    /// The user has closed the window; the program goes on.
    void closed();
    void quitWanted();

protected:
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void makeViews();
    QWidget *makeRightPanel();
    QWidget *makeBottomBar();
    void connectCommands();
    void connectWindowCommands();
    void restoreGeometryFromSettings();
    void rememberGeometry();
    void scheduleUpdate();
    void updateCommands();
    void reportFailedCopies(const QStringList &failures);
    void showAbout();

    const Services m_services;
    CommandActions *const m_actions;
    ImageListPane *m_imageListPane = nullptr;
    PresetsPanel *m_presetsPanel = nullptr;
    QSplitter *m_imageViewBrowserSplitView = nullptr;
    QSplitter *m_panelSplitView = nullptr;
    bool m_isUpdateScheduled = false;
    QPointer<QWidget> m_focusBefore; // while the content is disabled
};

} // namespace plexa

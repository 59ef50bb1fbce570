// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/indexlist.h"
#include "presets/presetsstore.h"

#include <QWidget>

#include <memory>

class QAction;
class QBoxLayout;
class QLabel;
class QLineEdit;
class QStackedWidget;

namespace plexa
{

class Alerts;
class AppController;
class CommandActions;
class ManagedPresets;
class PresetListView;
class UserDefaults;

/// The window in which the user manages the presets of one kind: their list with a search, and the editor of
/// the selected one. Not modal; it is a window of its own, so a dialog of the main window does not block it.
/// Closing it saves the list. Main thread.
class PresetsManagerWindow final : public QWidget
{
    Q_OBJECT

public:
    /// All of them outlive the window.
    struct Services {
        AppController &controller;
        UserDefaults &defaults;
        Alerts &alerts;
        CommandActions &actions; ///< of the main window, for undoing
    };

    PresetsManagerWindow(PresetsStore::Kind kind, const Services &services);
    ~PresetsManagerWindow() override;

    /// Shows the window in front.
    void present();
    /// Selects this row and scrolls to it, whatever is searched for.
    void selectRow(int row) { selectRows({row}); }
    /// Gives the focus to the name of the selected preset, all of it selected.
    void editName();

Q_SIGNALS:
    void shownChanged();

protected:
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    bool isWatermark() const { return m_kind == PresetsStore::Kind::Watermark; }
    QAction *makeAction(const char *name, const QString &text, const QString &toolTip, const char *icon,
                        const QKeySequence &shortcut, void (PresetsManagerWindow::*run)());
    void makeActions();
    QWidget *makeListSide();
    QWidget *makeEditorSide();
    QWidget *makeNoSelectionPage();
    void connectList();
    void restoreGeometryFromSettings();

    void createNewPreset();
    void duplicatePresets();
    void removePresets();
    void movePresetsUp();
    void movePresetsDown();
    void exportPresets();
    void importPresets();
    void importExamplePresets();
    void startSearch();

    void selectRows(const IndexList &rows);
    void showSelection();
    void showName();
    void updateActions();
    QStringList fileFilters() const;

    const PresetsStore::Kind m_kind;
    const Services m_services;
    const std::unique_ptr<ManagedPresets> m_presets;
    QLineEdit *const m_searchField;
    PresetListView *const m_list;
    QLineEdit *const m_nameField;
    QLabel *const m_severalLabel;
    QStackedWidget *const m_pages; ///< no selection, editor
    int m_editedRow = -1;
    QAction *m_duplicate = nullptr;
    QAction *m_remove = nullptr;
    QAction *m_moveUp = nullptr;
    QAction *m_moveDown = nullptr;
    QAction *m_export = nullptr;
};

} // namespace plexa

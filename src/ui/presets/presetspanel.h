// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/indexlist.h"
#include "ui/widgets/presetlistmodel.h"
#include "watermark/wpreset.h"

#include <QWidget>

class QStackedWidget;
class QVBoxLayout;

namespace plexa
{

class AppController;
class AppliedPresets;
class CommandActions;
class PresetListView;
class SegmentedSwitch;
class UserDefaults;
class WPresetViewController;

/// The right side of the main window: the two buttons that select the mode, in single mode the editor of the
/// single watermark, in presets mode the lists of applied and of all presets and the editor of the one that
/// was selected last. Carries out their commands.
class PresetsPanel final : public QWidget
{
    Q_OBJECT

public:
    /// @param controller  outlives the panel, like the settings and the actions
    PresetsPanel(AppController &controller, UserDefaults &defaults, CommandActions &actions,
                 QWidget *parent = nullptr);

    /// The selected presets in the list of all presets, in its order.
    WPresetList selectedWPresets() const;

private:
    SegmentedSwitch *makeModeSelector();
    WPresetViewController *makeEditor(UserDefaults &defaults, const QString &name);
    QWidget *makePresetsView();
    void addAppliedList(QVBoxLayout *layout);
    void addAllList(QVBoxLayout *layout);
    void connectLists();
    void connectCommands();
    void applySelected();
    void loadPreset();
    void saveQuickPreset();
    void showMode();
    void showApplied();
    void edit(const WPresetList &selected);
    void doubleMouseClick(const std::shared_ptr<WPreset> &preset);

    AppController &m_controller;
    AppliedPresets &m_applied;
    CommandActions &m_actions;
    SegmentedSwitch *const m_modeSelector;
    PresetListModel *const m_appliedModel;
    PresetListModel *const m_allModel;
    PresetListView *const m_appliedTable;
    PresetListView *const m_allTable;
    QStackedWidget *const m_modeContainer;
    WPresetViewController *const m_quickEditor;
    WPresetViewController *const m_editor;
};

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/indexlist.h"
#include "watermark/wpreset.h"

#include <QWidget>

class QStackedWidget;
class QVBoxLayout;

namespace plexa
{

class AppController;
class AppliedPresets;
class CommandActions;
class PresetListModel;
class PresetListView;
class SegmentedSwitch;

/// The right side of the main window: the two buttons that select the mode, and in presets mode the lists of
/// applied and of all presets. Carries out their commands.
class PresetsPanel final : public QWidget
{
    Q_OBJECT

public:
    /// @param controller  outlives the panel, like the actions
    PresetsPanel(AppController &controller, CommandActions &actions, QWidget *parent = nullptr);

    /// The container for the editor of the single watermark.
    QWidget *quickWPresetContainer() const { return m_quickContainer; }

    /// The selected presets in the list of all presets, in its order.
    WPresetList selectedWPresets() const;

private:
    SegmentedSwitch *makeModeSelector();
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
    void doubleMouseClick(const QModelIndex &index, const PresetListModel &model);

    AppController &m_controller;
    AppliedPresets &m_applied;
    CommandActions &m_actions;
    SegmentedSwitch *const m_modeSelector;
    PresetListModel *const m_appliedModel;
    PresetListModel *const m_allModel;
    PresetListView *const m_appliedTable;
    PresetListView *const m_allTable;
    QStackedWidget *const m_modeContainer;
    QWidget *const m_quickContainer;
};

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/indexlist.h"
#include "watermark/wpreset.h"

#include <QWidget>

class QAbstractButton;
class QHBoxLayout;
class QStackedWidget;

namespace plexa
{

class AppliedPresets;
class CommandActions;
class PresetListModel;
class PresetListView;
class PresetsStore;

/// The right side of the main window: the two buttons that select the mode, and in presets mode the lists of
/// applied and of all presets. Carries out their commands.
class PresetsPanel final : public QWidget
{
    Q_OBJECT

public:
    /// @param applied  outlives the panel, like the store and the actions
    PresetsPanel(AppliedPresets &applied, PresetsStore &store, CommandActions &actions,
                 QWidget *parent = nullptr);

    /// The container for the editor of the single watermark.
    QWidget *quickWPresetContainer() const { return m_quickContainer; }

    /// The selected presets in the list of all presets, in its order.
    WPresetList selectedWPresets() const;

private:
    QHBoxLayout *makeModeSelector();
    QWidget *makePresetsView();
    void connectLists();
    void connectCommands(PresetsStore &store);
    void showMode();
    void showApplied();
    void doubleMouseClick(const QModelIndex &index, const PresetListModel &model);

    AppliedPresets &m_applied;
    CommandActions &m_actions;
    PresetListModel *const m_appliedModel;
    PresetListModel *const m_allModel;
    PresetListView *const m_appliedTable;
    PresetListView *const m_allTable;
    QList<QAbstractButton *> m_modeButtons; // single mode, presets mode
    QStackedWidget *const m_modeContainer;
    QWidget *const m_quickContainer;
};

} // namespace plexa

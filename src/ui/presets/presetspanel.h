// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/indexlist.h"
#include "watermark/wpreset.h"

#include <QWidget>

class QStackedWidget;

namespace plexa
{

class AppliedPresets;
class CommandActions;
class ModeSelector;
class PresetListModel;
class PresetListView;

/// The right side of the main window: the mode selector, and in presets mode the lists of applied and of all
/// presets.
class PresetsPanel final : public QWidget
{
    Q_OBJECT

public:
    /// @param applied  outlives the panel
    PresetsPanel(AppliedPresets &applied, CommandActions &actions, QWidget *parent = nullptr);
    ~PresetsPanel() override;

    /// Sets the list of all presets.
    void setWPresets(const WPresetList &presets);

    /// The container for the editor of the single watermark.
    QWidget *quickWPresetContainer() const { return m_quickContainer; }

    /// The selected presets in the list of all presets, in its order.
    WPresetList selectedWPresets() const;
    /// Applies selectedWPresets().
    void addSelectedWPresetsToApplied();

Q_SIGNALS:
    /// A request to edit the presets, starting with the one selected in the list of all presets.
    void presetsManagerWanted();
    void wPresetsSelectionChanged();

private:
    QWidget *makePresetsView(CommandActions &actions);
    void connectLists();
    void showMode();
    void showApplied();
    void doubleMouseClick(const QModelIndex &index, const PresetListModel &model);

    AppliedPresets &m_applied;
    PresetListModel *const m_appliedModel;
    PresetListModel *const m_allModel;
    PresetListView *const m_appliedTable;
    PresetListView *const m_allTable;
    ModeSelector *m_modeSegments = nullptr;
    QStackedWidget *m_modeContainer = nullptr;
    QWidget *m_quickContainer = nullptr;
};

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/indexlist.h"
#include "ui/widgets/presetlistmodel.h"
#include "watermark/wpreset.h"

#include <QWidget>

#include <optional>

class QCheckBox;
class QMenu;
class QSplitter;
class QStackedWidget;

namespace plexa
{

class AllPresetsList;
class AppController;
class AppliedPresets;
class ChoiceButtons;
class CommandActions;
class ElidedLabel;
class PresetListView;
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

Q_SIGNALS:
    /// The manager of presets shows the new one, which needs a name.
    void newPresetShown();

private:
    ChoiceButtons *makeModeSelector();
    WPresetViewController *makeEditor(UserDefaults &defaults, const QString &name);
    QWidget *makeSingleView();
    void fillLoadMenu(QMenu &menu);
    void makePresetsView(UserDefaults &defaults);
    QWidget *makeAppliedList();
    void fitFoldedList();
    void connectLists();
    void connectCommands();
    void apply(const WPresetList &presets, std::optional<int> toRow = {});
    void loadPreset(const std::shared_ptr<WPreset> &preset);
    void saveQuickPreset();
    void updatePreset();
    void nameUpdateCommand();
    void nameEditedPreset();
    void showMode();
    void showApplied();
    void showCombined();
    void edit(const WPresetList &selected);
    void doubleMouseClick(const std::shared_ptr<WPreset> &preset);

    AppController &m_controller;
    AppliedPresets &m_applied;
    CommandActions &m_actions;
    ChoiceButtons *const m_modeSelector;
    PresetListModel *const m_appliedModel;
    PresetListView *const m_appliedTable;
    QCheckBox *const m_combined;
    AllPresetsList *const m_all;
    QStackedWidget *const m_modeContainer;
    WPresetViewController *const m_quickEditor;
    WPresetViewController *const m_editor;
    ElidedLabel *const m_editedName;
    QStackedWidget *const m_editorOrHint;
    QSplitter *const m_presetsSplitView;
    QList<int> m_sizesUnfolded; // of the parts of presets mode, in points
};

} // namespace plexa

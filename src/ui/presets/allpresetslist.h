// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/presets/preseticons.h"
#include "ui/widgets/foldingsection.h"
#include "ui/widgets/presetlistmodel.h"

class QLineEdit;

namespace plexa
{

class AppController;
class CommandActions;
class PresetListView;
class UserDefaults;

/// The list of all watermark presets, with a search, and pictures of the presets on the shown photo. Folds to
/// its title, and remembers it. Main thread.
class AllPresetsList final : public FoldingSection
{
    Q_OBJECT

public:
    /// @param controller  outlives the list, like the settings and the actions
    AllPresetsList(AppController &controller, UserDefaults &defaults, CommandActions &actions,
                   QWidget *parent = nullptr);

    PresetListView &table() { return *m_table; }
    const WPresetList &presets() const { return m_model.presets(); }

    /// In the order of the list.
    WPresetList selected() const;
    /// Selects one preset of the list; ends a search that hides it.
    void select(const WPreset *preset);

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    AllPresetsList(AppController &controller, UserDefaults &defaults, CommandActions &actions,
                   QWidget *content, QWidget *parent);
    void fillHeader(CommandActions &actions);
    void fill(QWidget &content, CommandActions &actions);

    PresetListModel m_model;
    PresetListView *const m_table;
    PresetIcons m_icons;
    QLineEdit *const m_search;
};

} // namespace plexa

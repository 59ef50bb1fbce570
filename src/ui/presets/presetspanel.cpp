// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/presets/presetspanel.h"

#include "app/appliedpresets.h"
#include "presets/presetsstore.h"
#include "ui/widgets/commandactions.h"
#include "ui/widgets/presetlistmodel.h"
#include "ui/widgets/presetlistview.h"
#include "ui/widgets/sectiontitle.h"

#include <QAction>
#include <QActionGroup>
#include <QButtonGroup>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace plexa
{

namespace
{

const char kModeLook[] = R"(
QPushButton { border: 1px solid #b9bec4; padding: 5px 10px; background: #fbfcfc; color: #242a30; }
QPushButton:hover { background: #eef1f4; }
QPushButton:checked { background: #3b78b4; border-color: #33689c; color: white; }
QPushButton:focus { border-color: #33689c; }
QPushButton:checked:focus { border: 2px solid #12293f; padding: 4px 9px; }
#singleModeButton { border-top-left-radius: 5px; border-bottom-left-radius: 5px; border-right: none; }
#presetsModeButton { border-top-right-radius: 5px; border-bottom-right-radius: 5px; }
)";

QHBoxLayout *buttonRow()
{
    auto *const row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(2);
    return row;
}

} // namespace

PresetsPanel::PresetsPanel(AppliedPresets &applied, PresetsStore &store, CommandActions &actions,
                           QWidget *parent)
    : QWidget(parent)
    , m_applied(applied)
    , m_actions(actions)
    , m_appliedModel(new PresetListModel(store.wPresetList(), this))
    , m_allModel(new PresetListModel(store.wPresetList(), this))
    , m_appliedTable(new PresetListView(*m_appliedModel))
    , m_allTable(new PresetListView(*m_allModel))
    , m_modeContainer(new QStackedWidget)
    , m_quickContainer(new QWidget)
{
    m_quickContainer->setObjectName(QStringLiteral("quickWPresetContainer"));
    m_modeContainer->addWidget(m_quickContainer);
    m_modeContainer->addWidget(makePresetsView());
    m_allModel->follow(store.wPresetList());

    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(12);
    layout->addLayout(makeModeSelector());
    layout->addWidget(m_modeContainer, 1);
    connectLists();
    connectCommands(store);
    showMode();
    showApplied();
}

/// Two joined buttons, one of which is checked.
QHBoxLayout *PresetsPanel::makeModeSelector()
{
    QHBoxLayout *const row = buttonRow();
    row->setSpacing(0);
    auto *const buttons = new QButtonGroup(this);
    auto *const items = new QActionGroup(&m_actions);
    for (const auto &[id, text] :
         {std::pair(ActionId::SingleMode, tr("Single")), {ActionId::PresetsMode, tr("Presets")}}) {
        auto *const button = new QPushButton(text);
        m_actions.bindButton(id, button);
        button->setStyleSheet(QString::fromLatin1(kModeLook));
        button->setCheckable(true);
        // The Tab key reaches the checked button; the arrow keys continue from there.
        button->setFocusPolicy(Qt::ClickFocus);
        connect(button, &QAbstractButton::toggled, button,
                [button](bool isOn) { button->setFocusPolicy(isOn ? Qt::StrongFocus : Qt::ClickFocus); });
        m_actions.action(id)->setCheckable(true);
        items->addAction(m_actions.action(id));
        buttons->addButton(button);
        m_modeButtons.append(button);
        row->addWidget(button, 1);
    }
    return row;
}

QWidget *PresetsPanel::makePresetsView()
{
    m_appliedTable->setObjectName(QStringLiteral("wPresetsAppliedTable"));
    m_appliedTable->setAccessibleName(tr("Applied presets"));
    m_appliedTable->setWhatsThis(tr("The presets that are drawn on the photos, in this order. Drag them into "
                                    "another order; double-click one to edit it."));
    m_appliedTable->setAllowsReordering();
    m_appliedTable->setEmptyHint(tr("No preset is applied yet"));
    m_allTable->setObjectName(QStringLiteral("wPresetsAllTable"));
    m_allTable->setAccessibleName(tr("All presets"));
    m_allTable->setWhatsThis(tr("All watermark presets. Press Enter to apply the selected ones; "
                                "double-click one to edit it."));
    m_allTable->setEmptyHint(tr("No presets yet"));

    const auto setContextMenu = [this](QWidget *table, std::initializer_list<ActionId> ids) {
        table->setContextMenuPolicy(Qt::ActionsContextMenu);
        for (const ActionId id : ids)
            table->addAction(m_actions.action(id));
    };
    setContextMenu(m_appliedTable,
                   {ActionId::MovePresetsUp, ActionId::MovePresetsDown, ActionId::RemoveAppliedPresets,
                    ActionId::ClearAppliedPresets, ActionId::ToggleWatermarkPresets});
    setContextMenu(m_allTable,
                   {ActionId::ApplyPresets, ActionId::LoadPreset, ActionId::ToggleWatermarkPresets});

    auto *const view = new QWidget;
    auto *const layout = new QVBoxLayout(view);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    layout->addWidget(sectionTitle(tr("Applied presets"), m_appliedTable));
    layout->addWidget(m_appliedTable, 2);
    QHBoxLayout *const appliedButtons = buttonRow();
    for (const ActionId id : {ActionId::PreviousPreset, ActionId::NextPreset})
        appliedButtons->addWidget(m_actions.makeButton(id, view));
    appliedButtons->addStretch();
    for (const ActionId id : {ActionId::RemoveAppliedPresets, ActionId::ClearAppliedPresets})
        appliedButtons->addWidget(m_actions.makeButton(id, view));
    layout->addLayout(appliedButtons);
    layout->addSpacing(6);
    layout->addWidget(sectionTitle(tr("All presets"), m_allTable));
    layout->addWidget(m_allTable, 3);
    QHBoxLayout *const allButtons = buttonRow();
    const auto add = [&](ActionId id, const QString &text) {
        auto *const button = m_actions.makeButton(id, view, CommandActions::ButtonStyle::TextBesideIcon);
        button->setText(text);
        allButtons->addWidget(button);
    };
    add(ActionId::ApplyPresets, tr("Apply"));
    allButtons->addStretch();
    add(ActionId::ToggleWatermarkPresets, tr("Manage"));
    layout->addLayout(allButtons);
    return view;
}

void PresetsPanel::connectLists()
{
    connect(&m_applied, &AppliedPresets::modeChanged, this, &PresetsPanel::showMode);
    connect(&m_applied, &AppliedPresets::appliedChanged, this, &PresetsPanel::showApplied);
    connect(&m_applied, &AppliedPresets::selectedRowsChanged, this,
            [this] { m_appliedTable->selectRows(m_applied.selectedRows()); });
    connect(m_appliedTable, &PresetListView::selectedRowsChanged, this,
            [this] { m_applied.selectRows(m_appliedTable->selectedRows()); });
    connect(m_appliedTable, &PresetListView::rowsDropped, &m_applied, &AppliedPresets::moveAppliedPresets);
    connect(m_appliedTable, &PresetListView::deletePressed, &m_applied,
            &AppliedPresets::removeSelectedAppliedPresets);
    connect(m_allTable, &PresetListView::returnPressed, this,
            [this] { m_actions.run(ActionId::ApplyPresets); });
    connect(m_allTable, &PresetListView::selectedRowsChanged, &m_actions, &CommandActions::scheduleUpdate);
    for (const auto &[table, model] : {std::pair(m_appliedTable, m_appliedModel), {m_allTable, m_allModel}})
        connect(table, &QAbstractItemView::doubleClicked, this,
                [this, model = model](const QModelIndex &index) { doubleMouseClick(index, *model); });
}

void PresetsPanel::connectCommands(PresetsStore &store)
{
    AppliedPresets &applied = m_applied;
    using Mode = AppliedPresets::Mode;
    using Neighbor = AppliedPresets::Neighbor;
    m_actions.setHandler(ActionId::SingleMode, [&applied] { applied.modeDidChange(Mode::Single); });
    m_actions.setHandler(ActionId::PresetsMode, [&applied] { applied.modeDidChange(Mode::Presets); });
    m_actions.setHandler(ActionId::NextPreset,
                         [&applied] { applied.selectNeighborAppliedPreset(Neighbor::Next); });
    m_actions.setHandler(ActionId::PreviousPreset,
                         [&applied] { applied.selectNeighborAppliedPreset(Neighbor::Previous); });
    m_actions.setHandler(ActionId::MovePresetsUp,
                         [&applied] { applied.stepSelectedAppliedPresets(Step::Up); });
    m_actions.setHandler(ActionId::MovePresetsDown,
                         [&applied] { applied.stepSelectedAppliedPresets(Step::Down); });
    for (const ActionId id : {ActionId::MovePresetsUp, ActionId::MovePresetsDown})
        m_actions.useShortcutIn(*this, id);
    m_actions.setHandler(ActionId::RemoveAppliedPresets,
                         [&applied] { applied.removeSelectedAppliedPresets(); });
    m_actions.setHandler(ActionId::ClearAppliedPresets, [&applied] { applied.clearAppliedPresets(); });
    m_actions.setHandler(ActionId::ApplyPresets,
                         [this] { m_applied.addWPresetsToApplied(selectedWPresets()); });
    m_actions.setHandler(ActionId::LoadPreset,
                         [this, &store] { store.loadWPreset(*selectedWPresets().front()); });
}

WPresetList PresetsPanel::selectedWPresets() const
{
    WPresetList selected;
    for (const int row : m_allTable->selectedRows())
        selected.push_back(m_allModel->presets()[static_cast<std::size_t>(row)]);
    return selected;
}

void PresetsPanel::showMode()
{
    const int mode = m_applied.isInSingleMode() ? 0 : 1;
    m_modeButtons[mode]->setChecked(true);
    m_actions.action(mode == 0 ? ActionId::SingleMode : ActionId::PresetsMode)->setChecked(true);
    m_modeContainer->setCurrentIndex(mode);
}

void PresetsPanel::showApplied()
{
    const int formerCount = m_appliedModel->rowCount();
    const int scrolledTo = m_appliedTable->verticalScrollBar()->value();
    m_appliedModel->setPresets(m_applied.wPresetsApplied());
    m_appliedTable->selectRows(m_applied.selectedRows());
    m_appliedTable->verticalScrollBar()->setValue(scrolledTo);
    if (formerCount > 0 && m_appliedModel->rowCount() > formerCount)
        m_appliedTable->scrollToBottom(); // show the added presets
}

void PresetsPanel::doubleMouseClick(const QModelIndex &index, const PresetListModel &model)
{
    const std::shared_ptr<WPreset> &preset = model.presets()[static_cast<std::size_t>(index.row())];
    const WPresetList &all = m_allModel->presets();
    const auto found = std::find(all.begin(), all.end(), preset);
    if (found != all.end())
        m_allTable->selectRows({static_cast<int>(found - all.begin())});
    m_actions.run(ActionId::ToggleWatermarkPresets);
}

} // namespace plexa

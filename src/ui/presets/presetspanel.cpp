// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/presets/presetspanel.h"

#include "app/appcontroller.h"
#include "presets/presetsstore.h"
#include "ui/editors/tokenfieldwithinsertpopup.h"
#include "ui/editors/wpresetviewcontroller.h"
#include "ui/editors/wtextpresetviewcontroller.h"
#include "ui/widgets/commandactions.h"
#include "ui/widgets/look.h"
#include "ui/widgets/presetlistview.h"
#include "ui/widgets/sectiontitle.h"
#include "ui/widgets/segmentedswitch.h"

#include <QAction>
#include <QActionGroup>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QSplitter>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace plexa
{

namespace
{

// Of presets mode at first; the user may move the divider.
constexpr int kListsHeight = 300;
constexpr int kEditorHeight = 400;

/// Some three rows.
constexpr int kMinListHeight = 72;

QHBoxLayout *buttonRow()
{
    auto *const row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(look::kSmallGap);
    return row;
}

/// A button with a shorter text than its command has.
QToolButton *makeTextButton(CommandActions &actions, ActionId id, const QString &text)
{
    QToolButton *const button = actions.makeButton(id, nullptr, CommandActions::ButtonStyle::TextBesideIcon);
    button->setText(text);
    return button;
}

} // namespace

PresetsPanel::PresetsPanel(AppController &controller, UserDefaults &defaults, CommandActions &actions,
                           QWidget *parent)
    : QWidget(parent)
    , m_controller(controller)
    , m_applied(controller.appliedPresets())
    , m_actions(actions)
    , m_modeSelector(makeModeSelector())
    , m_appliedModel(new PresetListModel(controller.presetsStore().wPresetList(), this))
    , m_allModel(new PresetListModel(controller.presetsStore().wPresetList(), this))
    , m_appliedTable(new PresetListView(*m_appliedModel))
    , m_allTable(new PresetListView(*m_allModel))
    , m_modeContainer(new QStackedWidget)
    , m_quickEditor(makeEditor(defaults, QStringLiteral("quickWPresetEditor")))
    , m_editor(makeEditor(defaults, QStringLiteral("wPresetEditor")))
{
    m_modeContainer->addWidget(m_quickEditor);
    m_modeContainer->addWidget(makePresetsView());
    m_allModel->follow(controller.presetsStore().wPresetList());

    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(look::kLargeGap);
    layout->addWidget(m_modeSelector);
    layout->addWidget(m_modeContainer, 1);
    connectLists();
    connectCommands();
    showMode();
    showApplied();
}

SegmentedSwitch *PresetsPanel::makeModeSelector()
{
    auto *const selector = new SegmentedSwitch(tr("Watermark mode"), this);
    selector->setObjectName(QStringLiteral("modeSegments"));
    auto *const items = new QActionGroup(&m_actions);
    for (const auto &[id, text] :
         {std::pair(ActionId::SingleMode, tr("Single")), {ActionId::PresetsMode, tr("Presets")}}) {
        m_actions.bindButton(id, selector->addPart(text));
        m_actions.action(id)->setCheckable(true);
        items->addAction(m_actions.action(id));
    }
    return selector;
}

WPresetViewController *PresetsPanel::makeEditor(UserDefaults &defaults, const QString &name)
{
    using Row = WPresetViewController::SavingPresetRow;
    auto *const editor = new WPresetViewController(
        {m_controller.presetsStore(), m_controller.photoServices().fonts, defaults}, Row::Shown);
    editor->setObjectName(name);
    connect(editor, &WPresetViewController::edited, &m_controller.undoHistory(), &UndoHistory::presetEdited);
    editor->textEditor().tokenField().setValueOnPhoto(
        [&set = m_controller.imageSet()](const QString &token) -> std::optional<QString> {
            const std::shared_ptr<ImageObject> image = set.shownImage();
            return image ? image->facts().stringForInfoToken(token) : std::nullopt;
        });
    return editor;
}

QWidget *PresetsPanel::makePresetsView()
{
    m_appliedTable->setObjectName(QStringLiteral("wPresetsAppliedTable"));
    m_appliedTable->setAccessibleName(tr("Applied presets"));
    m_appliedTable->setWhatsThis(tr("The presets that are drawn on the photos, in this order. Drag them into "
                                    "another order; double-click one to edit it."));
    m_appliedTable->setAllowsReordering();
    m_appliedTable->setEmptyHint(tr("No preset is applied yet.\nSelect one below and press Apply."));
    m_allTable->setObjectName(QStringLiteral("wPresetsAllTable"));
    m_allTable->setAccessibleName(tr("All presets"));
    m_allTable->setWhatsThis(tr("All watermark presets. Press Enter to apply the selected ones; "
                                "double-click one to edit it."));
    m_allTable->setEmptyHint(tr("No presets yet"));
    for (PresetListView *const table : {m_appliedTable, m_allTable})
        table->setMinimumHeight(kMinListHeight);

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

    auto *const lists = new QWidget;
    auto *const layout = new QVBoxLayout(lists);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(look::kSmallGap);
    addAppliedList(layout);
    layout->addSpacing(look::kGap);
    addAllList(layout);
    auto *const view = new QSplitter(Qt::Vertical);
    view->setObjectName(QStringLiteral("presetsSplitView"));
    view->setChildrenCollapsible(false);
    view->addWidget(lists);
    view->addWidget(m_editor);
    view->setStretchFactor(1, 1);
    view->setSizes({kListsHeight, kEditorHeight});
    m_editor->hide(); // until a preset is selected
    return view;
}

void PresetsPanel::addAppliedList(QVBoxLayout *layout)
{
    layout->addWidget(sectionTitle(tr("Applied presets"), m_appliedTable));
    layout->addWidget(m_appliedTable, 2);
    QHBoxLayout *const buttons = buttonRow();
    for (const ActionId id : {ActionId::MovePresetsUp, ActionId::MovePresetsDown})
        buttons->addWidget(m_actions.makeButton(id, nullptr));
    buttons->addStretch();
    for (const auto &[id, text] : {std::pair(ActionId::RemoveAppliedPresets, tr("Remove")),
                                   {ActionId::ClearAppliedPresets, tr("Clear")}})
        buttons->addWidget(makeTextButton(m_actions, id, text));
    layout->addLayout(buttons);
}

void PresetsPanel::addAllList(QVBoxLayout *layout)
{
    layout->addWidget(sectionTitle(tr("All presets"), m_allTable));
    layout->addWidget(m_allTable, 3);
    QHBoxLayout *const buttons = buttonRow();
    buttons->addWidget(makeTextButton(m_actions, ActionId::ApplyPresets, tr("Apply")));
    buttons->addStretch();
    buttons->addWidget(makeTextButton(m_actions, ActionId::ToggleWatermarkPresets, tr("Manage")));
    layout->addLayout(buttons);
}

/// Shows one selected preset in the editor; with none or several, the former one stays if it still exists.
void PresetsPanel::edit(const WPresetList &selected)
{
    const WPresetList &all = m_allModel->presets();
    if (selected.size() == 1)
        m_editor->setPreset(selected.front());
    else if (std::find(all.begin(), all.end(), m_editor->preset()) == all.end())
        m_editor->setPreset(nullptr);
    m_editor->setVisible(m_editor->preset() != nullptr);
}

void PresetsPanel::connectLists()
{
    const auto editQuick = [this] { m_quickEditor->setPreset(m_applied.quickWPreset()); };
    connect(&m_applied, &AppliedPresets::quickWPresetChanged, this, editQuick);
    editQuick();
    connect(&m_applied, &AppliedPresets::selectedRowsChanged, this, [this] {
        WPresetList selected;
        for (const int row : m_applied.selectedRows())
            selected.push_back(m_applied.wPresetsApplied()[static_cast<std::size_t>(row)]);
        edit(selected);
    });
    connect(m_allTable, &PresetListView::selectedRowsChanged, this, [this] { edit(selectedWPresets()); });
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
                [this, table = table, model = model](const QModelIndex &index) {
                    doubleMouseClick(model->presets()[static_cast<std::size_t>(table->rowOf(index))]);
                });
}

void PresetsPanel::connectCommands()
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
    m_actions.setHandler(ActionId::ApplyPresets, [this] { applySelected(); });
    m_actions.setHandler(ActionId::LoadPreset, [this] { loadPreset(); });
    m_actions.setHandler(ActionId::SaveQuickPreset, [this] { saveQuickPreset(); });
}

/// Selects the first of them, because the preview shows the selected one.
void PresetsPanel::applySelected()
{
    const WPresetList selected = selectedWPresets();
    const WPresetList before = m_applied.wPresetsApplied();
    m_applied.addWPresetsToApplied(selected);
    const WPresetList &applied = m_applied.wPresetsApplied();
    const auto first = std::find(applied.begin(), applied.end(), selected.front());
    m_applied.selectRows({static_cast<int>(first - applied.begin())});
    if (applied == before)
        m_controller.statusManager().notify(tr("“%1” is applied already").arg(selected.front()->name()));
}

/// Shows the single watermark, because that is what changes.
void PresetsPanel::loadPreset()
{
    const std::shared_ptr<WPreset> preset = selectedWPresets().front();
    m_controller.presetCommands().loadWPreset(preset);
    m_controller.statusManager().notify(tr("The single watermark is now a copy of “%1”").arg(preset->name()));
}

/// The mode stays: other presets would be drawn on the photos.
void PresetsPanel::saveQuickPreset()
{
    m_controller.presetCommands().saveQuickAsWPreset();
    const WPresetList &all = m_allModel->presets();
    m_allTable->selectRows({static_cast<int>(all.size()) - 1});
    m_controller.statusManager().notify(tr("“%1” was added to all presets").arg(all.back()->name()));
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
    m_modeSelector->check(mode);
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

void PresetsPanel::doubleMouseClick(const std::shared_ptr<WPreset> &preset)
{
    const WPresetList &all = m_allModel->presets();
    const auto found = std::find(all.begin(), all.end(), preset);
    if (found != all.end())
        m_allTable->selectRows({static_cast<int>(found - all.begin())});
    m_actions.run(ActionId::ToggleWatermarkPresets);
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/presets/presetspanel.h"

#include "app/appcontroller.h"
#include "platform/userdefaults.h"
#include "presets/presetsstore.h"
#include "ui/presets/allpresetslist.h"
#include "ui/presets/wpreseteditor.h"
#include "ui/widgets/choicebuttons.h"
#include "ui/widgets/commandactions.h"
#include "ui/widgets/elidedlabel.h"
#include "ui/widgets/look.h"
#include "ui/widgets/plaintooltip.h"
#include "ui/widgets/presetlistview.h"
#include "ui/widgets/sectiontitle.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
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

// Of presets mode at first; the user may move the dividers.
constexpr int kAppliedHeight = 138;
constexpr int kAllHeight = 212;
constexpr int kEditorHeight = 260;

const QString kSizesKey = QStringLiteral("presetsSplitView");

int linesHeight(int lines)
{
    return lines * QFontMetrics(QApplication::font()).lineSpacing();
}

QHBoxLayout *buttonRow()
{
    auto *const row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(look::kSmallGap);
    return row;
}

QString asMenuText(QString name)
{
    return name.replace(u'&', QLatin1String("&&"));
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
    , m_appliedTable(new PresetListView(*m_appliedModel))
    , m_combined(new QCheckBox(tr("All on one copy")))
    , m_all(new AllPresetsList(controller, defaults, actions))
    , m_modeContainer(new QStackedWidget)
    , m_quickEditor(makeEditor(defaults, QStringLiteral("quickWPresetEditor")))
    , m_editor(makeEditor(defaults, QStringLiteral("wPresetEditor")))
    , m_editedName(new ElidedLabel(Qt::ElideMiddle))
    , m_editorOrHint(new QStackedWidget)
    , m_presetsSplitView(new QSplitter(Qt::Vertical))
    , m_sizesUnfolded({kAppliedHeight, kAllHeight, kEditorHeight})
{
    m_modeContainer->addWidget(makeSingleView());
    makePresetsView(defaults);
    m_modeContainer->addWidget(m_presetsSplitView);

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

ChoiceButtons *PresetsPanel::makeModeSelector()
{
    auto *const selector = new ChoiceButtons(tr("Watermark mode"), ChoiceButtons::Look::Texts, 0, this);
    selector->setObjectName(QStringLiteral("modeSegments"));
    auto *const items = new QActionGroup(&m_actions);
    for (const auto &[id, text] :
         {std::pair(ActionId::SingleMode, tr("Single")), {ActionId::PresetsMode, tr("Presets")}}) {
        m_actions.bindButton(id, selector->addChoice(text));
        m_actions.action(id)->setCheckable(true);
        items->addAction(m_actions.action(id));
    }
    return selector;
}

WPresetViewController *PresetsPanel::makeEditor(UserDefaults &defaults, const QString &name)
{
    WPresetViewController *const editor = makeWPresetEditor(m_controller, defaults);
    editor->setObjectName(name);
    connect(editor, &WPresetViewController::edited, &m_controller.undoHistory(), &UndoHistory::presetEdited);
    return editor;
}

/// The commands for the single watermark above its editor.
QWidget *PresetsPanel::makeSingleView()
{
    auto *const view = new QWidget;
    auto *const layout = new QVBoxLayout(view);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(look::kGap);
    QHBoxLayout *const buttons = buttonRow();
    auto *const load = new QPushButton(tr("Load"));
    load->setObjectName(QStringLiteral("loadPresetMenuButton"));
    load->setAccessibleName(tr("Load a Preset"));
    load->setToolTip(tr("Edit a copy of a preset as the single watermark"));
    auto *const menu = new QMenu(load);
    connect(menu, &QMenu::aboutToShow, this, [this, menu] { fillLoadMenu(*menu); });
    load->setMenu(menu);
    buttons->addWidget(load);
    for (const auto &[id, text] :
         {std::pair(ActionId::SaveQuickPreset, tr("Save as New")), {ActionId::UpdatePreset, tr("Update")}}) {
        auto *const button = new QPushButton(text);
        m_actions.bindButton(id, button);
        buttons->addWidget(button, 1);
    }
    layout->addLayout(buttons);
    layout->addWidget(m_quickEditor, 1);
    return view;
}

void PresetsPanel::fillLoadMenu(QMenu &menu)
{
    menu.clear();
    for (const std::shared_ptr<WPreset> &preset : m_all->presets())
        menu.addAction(asMenuText(preset->name()), this, [this, preset] { loadPreset(preset); });
    if (menu.isEmpty())
        menu.addAction(tr("No presets yet"))->setEnabled(false);
}

/// Two lists, and below them the editor.
void PresetsPanel::makePresetsView(UserDefaults &defaults)
{
    // Keeps the room of the editor: the lists must not move under a double click.
    auto *const hint = new QLabel(tr("Select a preset to edit it here."));
    hint->setAlignment(Qt::AlignCenter);
    hint->setWordWrap(true);
    hint->setForegroundRole(QPalette::PlaceholderText);
    m_editorOrHint->addWidget(hint);
    auto *const part = new QWidget;
    auto *const layout = new QVBoxLayout(part);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(look::kSmallGap);
    m_editedName->setObjectName(QStringLiteral("editedPresetLabel"));
    QFont bold = m_editedName->font();
    bold.setWeight(QFont::DemiBold);
    m_editedName->setFont(bold);
    layout->addWidget(m_editedName);
    layout->addWidget(m_editor, 1);
    m_editorOrHint->addWidget(part);
    m_editorOrHint->setMinimumHeight(linesHeight(10)); // in a low window, the lists give way
    QSplitter &view = *m_presetsSplitView;
    view.setObjectName(QStringLiteral("presetsSplitView"));
    view.setChildrenCollapsible(false);
    view.addWidget(makeAppliedList());
    view.addWidget(m_all);
    view.addWidget(m_editorOrHint);
    view.setStretchFactor(2, 1);
    view.setSizes(m_sizesUnfolded);
    view.restoreState(QByteArray::fromBase64(defaults.stringForKey(kSizesKey).toLatin1()));
    connect(&view, &QSplitter::splitterMoved, this, [this, &defaults] {
        defaults.setObject(kSizesKey, QString::fromLatin1(m_presetsSplitView->saveState().toBase64()));
    });
    connect(m_all, &FoldingSection::foldedByUser, this, [this](bool isFolded) {
        if (isFolded)
            m_sizesUnfolded = m_presetsSplitView->sizes(); // they change later
        fitFoldedList();
        if (!isFolded)
            m_presetsSplitView->setSizes(m_sizesUnfolded);
    });
    fitFoldedList();
}

/// The editor gets the room of the folded list.
void PresetsPanel::fitFoldedList()
{
    m_all->setMaximumHeight(m_all->isFolded() ? m_all->minimumSizeHint().height() : QWIDGETSIZE_MAX);
    if (m_all->isFolded())
        m_presetsSplitView->setSizes({m_sizesUnfolded[0], 0, m_sizesUnfolded[1] + m_sizesUnfolded[2]});
}

QWidget *PresetsPanel::makeAppliedList()
{
    m_combined->setObjectName(QStringLiteral("combineAppliedCheckBox"));
    m_combined->setToolTip(
        tr("Draw all applied presets on one copy of a photo, instead of making a copy for each"));
    connect(m_combined, &QCheckBox::clicked, &m_applied, &AppliedPresets::setCombined);
    m_appliedTable->setObjectName(QStringLiteral("wPresetsAppliedTable"));
    m_appliedTable->setAccessibleName(tr("Applied presets"));
    m_appliedTable->setWhatsThis(tr("The presets that are drawn on the photos, in this order. Drag them into "
                                    "another order; double-click one to edit it."));
    m_appliedTable->setAllowsReordering();
    m_appliedTable->acceptDropsFrom(m_all->table());
    m_appliedTable->setEmptyHint(tr("No preset is applied yet.\nDouble-click one below, or drag it here."));
    m_appliedTable->setMinimumHeight(linesHeight(3) + look::kPageGap); // of the hint
    m_appliedTable->setContextMenuPolicy(Qt::ActionsContextMenu);
    for (const ActionId id :
         {ActionId::MovePresetsUp, ActionId::MovePresetsDown, ActionId::RemoveAppliedPresets,
          ActionId::ClearAppliedPresets, ActionId::ShowWatermarkPresets})
        m_appliedTable->addAction(m_actions.action(id));

    auto *const part = new QWidget;
    auto *const layout = new QVBoxLayout(part);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(look::kSmallGap);
    auto *const header = new QHBoxLayout;
    header->addWidget(sectionTitle(tr("Applied presets"), m_appliedTable));
    header->addStretch();
    header->addWidget(m_combined);
    header->addStrut(m_combined->sizeHint().height()); // the lists stay where they are when it appears
    layout->addLayout(header);
    layout->addWidget(m_appliedTable, 1);
    QHBoxLayout *const buttons = buttonRow();
    for (const ActionId id : {ActionId::MovePresetsUp, ActionId::MovePresetsDown})
        buttons->addWidget(m_actions.makeButton(id, nullptr));
    buttons->addStretch();
    for (const auto &[id, text] : {std::pair(ActionId::RemoveAppliedPresets, tr("Remove")),
                                   {ActionId::ClearAppliedPresets, tr("Clear")}})
        buttons->addWidget(makeTextButton(m_actions, id, text));
    layout->addLayout(buttons);
    return part;
}

/// Shows one selected preset in the editor; with none or several, the former one stays if it still exists.
void PresetsPanel::edit(const WPresetList &selected)
{
    const WPresetList &all = m_all->presets();
    if (selected.size() == 1)
        m_editor->setPreset(selected.front());
    else if (std::find(all.begin(), all.end(), m_editor->preset()) == all.end())
        m_editor->setPreset(nullptr);
    m_editorOrHint->setCurrentIndex(m_editor->preset() ? 1 : 0);
    nameEditedPreset();
}

/// The editor shows an applied preset, or one that is only in the list of all.
void PresetsPanel::nameEditedPreset()
{
    const std::shared_ptr<WPreset> preset = m_editor->preset();
    if (!preset)
        return;
    const WPresetList &applied = m_applied.wPresetsApplied();
    const bool isApplied = std::find(applied.begin(), applied.end(), preset) != applied.end();
    m_editedName->setText(isApplied ? tr("“%1”").arg(preset->name())
                                    : tr("“%1” (not applied)").arg(preset->name()));
    m_editedName->setToolTip(plainToolTip(m_editedName->text()));
}

void PresetsPanel::connectLists()
{
    const auto editQuick = [this] { m_quickEditor->setPreset(m_applied.quickWPreset()); };
    connect(&m_applied, &AppliedPresets::quickWPresetChanged, this, editQuick);
    editQuick();
    const auto editApplied = [this] { edit(m_applied.selectedWPresets()); };
    const auto editOfAll = [this] { edit(selectedWPresets()); };
    connect(&m_applied, &AppliedPresets::selectedRowsChanged, this, editApplied);
    connect(m_appliedTable, &PresetListView::selectedAgain, this, editApplied);
    connect(&m_all->table(), &PresetListView::selectedRowsChanged, this, editOfAll);
    connect(&m_all->table(), &PresetListView::selectedAgain, this, editOfAll);
    connect(&m_applied, &AppliedPresets::modeChanged, this, &PresetsPanel::showMode);
    connect(&m_applied, &AppliedPresets::appliedChanged, this, &PresetsPanel::showApplied);
    connect(&m_applied, &AppliedPresets::combinedChanged, this, &PresetsPanel::showCombined);
    connect(&m_applied, &AppliedPresets::selectedRowsChanged, this,
            [this] { m_appliedTable->selectRows(m_applied.selectedRows()); });
    connect(m_appliedTable, &PresetListView::selectedRowsChanged, this,
            [this] { m_applied.selectRows(m_appliedTable->selectedRows()); });
    connect(m_appliedTable, &PresetListView::rowsDropped, &m_applied, &AppliedPresets::moveAppliedPresets);
    connect(m_appliedTable, &PresetListView::deletePressed, &m_applied,
            &AppliedPresets::removeSelectedAppliedPresets);
    connect(m_appliedTable, &PresetListView::otherRowsDropped, this,
            [this](const IndexList &rows, int toRow) {
                WPresetList dropped;
                for (const int row : rows) {
                    if (row < static_cast<int>(m_all->presets().size()))
                        dropped.push_back(m_all->presets()[static_cast<std::size_t>(row)]);
                }
                apply(dropped, toRow);
            });
    connect(m_appliedTable, &QAbstractItemView::doubleClicked, this, [this](const QModelIndex &index) {
        doubleMouseClick(m_appliedModel->presets()[static_cast<std::size_t>(m_appliedTable->rowOf(index))]);
    });
    connect(&m_controller.presetCommands(), &PresetCommands::loadedWPresetChanged, this,
            &PresetsPanel::nameUpdateCommand);
    for (const auto signal : {&PresetListSignals::inserted, &PresetListSignals::removed})
        connect(&m_controller.presetsStore().wPresetList(), signal, this, &PresetsPanel::nameUpdateCommand);
    connect(&m_controller.presetsStore().wPresetList(), &PresetListSignals::edited, this,
            &PresetsPanel::nameUpdateCommand);
    connect(&m_controller.presetsStore().wPresetList(), &PresetListSignals::edited, this,
            &PresetsPanel::nameEditedPreset);
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
    m_actions.setHandler(ActionId::ApplyPresets, [this] { apply(selectedWPresets()); });
    m_actions.setHandler(ActionId::LoadPreset, [this] { loadPreset(selectedWPresets().front()); });
    m_actions.setHandler(ActionId::SaveQuickPreset, [this] { saveQuickPreset(); });
    m_actions.setHandler(ActionId::UpdatePreset, [this] { updatePreset(); });
}

void PresetsPanel::apply(const WPresetList &presets, std::optional<int> toRow)
{
    if (presets.empty())
        return;
    const WPresetList before = m_applied.wPresetsApplied();
    m_applied.addWPresetsToApplied(presets, toRow);
    edit(m_applied.selectedWPresets()); // which may have been selected before
    if (m_applied.wPresetsApplied() == before)
        m_controller.statusManager().notify(tr("“%1” is applied already").arg(presets.front()->name()));
}

void PresetsPanel::loadPreset(const std::shared_ptr<WPreset> &preset)
{
    m_controller.presetCommands().loadWPreset(preset);
    m_controller.statusManager().notify(tr("The single watermark is now a copy of “%1”").arg(preset->name()));
}

/// The mode stays: other presets would be drawn on the photos.
void PresetsPanel::saveQuickPreset()
{
    const std::shared_ptr<WPreset> saved = m_controller.presetCommands().saveQuickAsWPreset();
    m_all->select(saved.get());
    m_controller.statusManager().notify(tr("“%1” was added to all presets").arg(saved->name()));
    m_actions.run(ActionId::ShowWatermarkPresets);
    Q_EMIT newPresetShown();
}

void PresetsPanel::updatePreset()
{
    m_controller.presetCommands().updateLoadedWPreset();
    m_controller.statusManager().notify(tr("“%1” is now like the single watermark")
                                            .arg(m_controller.presetCommands().loadedWPreset()->name()));
}

/// The menu names the preset that would change.
void PresetsPanel::nameUpdateCommand()
{
    const std::shared_ptr<WPreset> loaded = m_controller.presetCommands().loadedWPreset();
    const CommandRow &row = commandRow(ActionId::UpdatePreset);
    const QString text = loaded ? tr("Upda&te “%1”").arg(asMenuText(loaded->name())) : commandText(row);
    if (m_actions.action(ActionId::UpdatePreset)->text() == text)
        return;
    m_actions.setText(ActionId::UpdatePreset, text,
                      loaded ? tr("Give “%1” the settings of the single watermark").arg(loaded->name())
                             : commandToolTip(row));
    m_actions.scheduleUpdate();
}

WPresetList PresetsPanel::selectedWPresets() const
{
    return m_all->selected();
}

void PresetsPanel::showMode()
{
    const int mode = m_applied.isInSingleMode() ? 0 : 1;
    m_modeSelector->setIndex(mode);
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
    nameEditedPreset();
    showCombined();
    const int nAdded = m_appliedModel->rowCount() - formerCount;
    if (formerCount == 0 || nAdded <= 0 || m_applied.selectedRows().isEmpty())
        return;
    const int first = m_applied.selectedRows().first();
    for (const int row : {std::min(first + nAdded, m_appliedModel->rowCount()) - 1, first})
        m_appliedTable->scrollTo(m_appliedTable->model()->index(row, 0)); // show the added presets
}

/// A single preset makes one copy anyway.
void PresetsPanel::showCombined()
{
    m_combined->setVisible(m_applied.wPresetsApplied().size() > 1);
    m_combined->setChecked(m_applied.areCombined());
}

void PresetsPanel::doubleMouseClick(const std::shared_ptr<WPreset> &preset)
{
    m_all->select(preset.get());
    m_actions.run(ActionId::ShowWatermarkPresets);
}

} // namespace plexa

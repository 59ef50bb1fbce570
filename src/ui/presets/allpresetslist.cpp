// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/presets/allpresetslist.h"

#include "app/appcontroller.h"
#include "presets/presetsstore.h"
#include "ui/widgets/commandactions.h"
#include "ui/widgets/look.h"
#include "ui/widgets/presetlistview.h"

#include <QAction>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace plexa
{
namespace
{

/// Two rows with pictures.
constexpr int kMinListHeight = 100;

} // namespace

AllPresetsList::AllPresetsList(AppController &controller, UserDefaults &defaults, CommandActions &actions,
                               QWidget *parent)
    : AllPresetsList(controller, defaults, actions, new QWidget, parent)
{
}

AllPresetsList::AllPresetsList(AppController &controller, UserDefaults &defaults, CommandActions &actions,
                               QWidget *content, QWidget *parent)
    : FoldingSection(tr("All presets"), {QStringLiteral("allPresetsFolded")}, content, defaults, parent)
    , m_model(controller.presetsStore().wPresetList())
    , m_table(new PresetListView(m_model))
    , m_icons(controller, m_model, *m_table)
    , m_search(new QLineEdit)
{
    setObjectName(QStringLiteral("allPresetsSection"));
    m_model.follow(controller.presetsStore().wPresetList());
    fillHeader(actions);
    fill(*content, actions);
}

void AllPresetsList::fillHeader(CommandActions &actions)
{
    m_search->setObjectName(QStringLiteral("allPresetsSearchField"));
    m_search->setPlaceholderText(tr("Search"));
    m_search->setAccessibleName(tr("Search all presets"));
    m_search->setToolTip(tr("Show only presets whose names contain this text"));
    m_search->setClearButtonEnabled(true);
    m_search->setMaximumWidth(160);
    m_search->addAction(actions.action(ActionId::Find)->icon(), QLineEdit::LeadingPosition);
    m_search->setAcceptDrops(false);
    for (QAction *const clear : m_search->findChildren<QAction *>())
        clear->setText(tr("Clear the search"));
    connect(m_search, &QLineEdit::textChanged, m_table, &PresetListView::setSearchText);
    connect(m_search, &QLineEdit::returnPressed, &actions, [this, &actions] {
        m_table->selectAnyRow();
        actions.run(ActionId::ApplyPresets);
    });
    m_search->installEventFilter(this);
    setHeaderWidget(m_search);
}

void AllPresetsList::fill(QWidget &content, CommandActions &actions)
{
    m_table->setObjectName(QStringLiteral("wPresetsAllTable"));
    m_table->setAccessibleName(tr("All presets"));
    m_table->setWhatsThis(
        tr("All watermark presets, as they look on the photo of the preview. To apply some, "
           "double-click them, press Enter, or drag them to the applied presets."));
    m_table->setEmptyHint(tr("No presets yet"));
    m_table->setMinimumHeight(kMinListHeight);
    m_table->setAllowsDragging();
    m_table->setContextMenuPolicy(Qt::ActionsContextMenu);
    for (const ActionId id : {ActionId::ApplyPresets, ActionId::LoadPreset, ActionId::ShowWatermarkPresets})
        m_table->addAction(actions.action(id));
    connect(m_table, &PresetListView::returnPressed, &actions,
            [&actions] { actions.run(ActionId::ApplyPresets); });
    connect(m_table, &QAbstractItemView::doubleClicked, &actions,
            [&actions] { actions.run(ActionId::ApplyPresets); });
    connect(m_table, &PresetListView::selectedRowsChanged, &actions, &CommandActions::scheduleUpdate);

    auto *const buttons = new QHBoxLayout;
    buttons->setSpacing(look::kSmallGap);
    for (const auto &[id, text] : {std::pair(ActionId::ApplyPresets, tr("Apply")),
                                   {ActionId::LoadPreset, tr("Load")},
                                   {ActionId::ShowWatermarkPresets, tr("Manage")}}) {
        QToolButton *const button =
            actions.makeButton(id, nullptr, CommandActions::ButtonStyle::TextBesideIcon);
        button->setText(text);
        buttons->addWidget(button);
        if (id == ActionId::LoadPreset)
            buttons->addStretch();
    }
    auto *const layout = new QVBoxLayout(&content);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(look::kSmallGap);
    layout->addWidget(m_table, 1);
    layout->addLayout(buttons);
}

/// The down arrow leads from the search to what was found.
bool AllPresetsList::eventFilter(QObject *object, QEvent *event)
{
    if (object == m_search && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent *>(event)->key() == Qt::Key_Down) {
        m_table->selectAnyRow();
        m_table->setFocus(Qt::OtherFocusReason);
        return true;
    }
    return FoldingSection::eventFilter(object, event);
}

WPresetList AllPresetsList::selected() const
{
    WPresetList selected;
    for (const int row : m_table->selectedRows())
        selected.push_back(presets()[static_cast<std::size_t>(row)]);
    return selected;
}

void AllPresetsList::select(const WPreset *preset)
{
    const auto found = std::find_if(presets().begin(), presets().end(),
                                    [preset](const auto &one) { return one.get() == preset; });
    if (found == presets().end())
        return;
    if (!(*found)->name().contains(m_search->text(), Qt::CaseInsensitive))
        m_search->clear();
    m_table->selectRows({static_cast<int>(found - presets().begin())});
}

} // namespace plexa

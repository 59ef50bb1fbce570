// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/presets/presetsmanagerwindow.h"

#include "app/appcontroller.h"
#include "platform/alerts.h"
#include "platform/userdefaults.h"
#include "ui/presets/managedpresets.h"
#include "ui/widgets/commandactions.h"
#include "ui/widgets/helpbutton.h"
#include "ui/widgets/look.h"
#include "ui/widgets/presetlistmodel.h"
#include "ui/widgets/presetlistview.h"

#include <QAction>
#include <QCloseEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QSplitter>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <numeric>

namespace plexa
{
namespace
{

constexpr QSize kFirstSize(800, 640);
constexpr QSize kFirstSizeForSaving(760, 420);
constexpr int kListWidth = 300;
constexpr int kMinListWidth = 232; // without the margin

enum Page { NoSelection, Editor };

/// For files of presets, in both managers; the folder of the last time.
QString &lastFolder()
{
    static QString folder = QDir::homePath();
    return folder;
}

QToolButton *makeButton(QAction *action)
{
    auto *const button = new QToolButton;
    button->setDefaultAction(action);
    button->setObjectName(action->objectName() + QStringLiteral("Button"));
    button->setAccessibleName(QString(action->text()).remove(u'&'));
    button->setAutoRaise(true);
    button->setIconSize(QSize(look::kButtonIcon, look::kButtonIcon));
    button->setFocusPolicy(Qt::TabFocus);
    if (action->icon().isNull())
        button->setToolButtonStyle(Qt::ToolButtonTextOnly);
    return button;
}

} // namespace

PresetsManagerWindow::PresetsManagerWindow(PresetsStore::Kind kind, const Services &services)
    : QWidget(nullptr, Qt::Window)
    , m_kind(kind)
    , m_services(services)
    , m_presets(managedPresets(kind, services.controller, services.defaults))
    , m_searchField(new QLineEdit)
    , m_list(new PresetListView(m_presets->model()))
    , m_nameField(new QLineEdit)
    , m_severalLabel(new QLabel)
    , m_pages(new QStackedWidget)
{
    setObjectName(isWatermark() ? QStringLiteral("WatermarkPresetsManagement")
                                : QStringLiteral("SavingPresetsManagement"));
    setWindowTitle(isWatermark() ? tr("Watermark Presets Management") : tr("Saving Presets Management"));
    makeActions();
    auto *const sides = new QSplitter(Qt::Horizontal);
    sides->setChildrenCollapsible(false);
    sides->addWidget(makeListSide());
    sides->addWidget(makeEditorSide());
    sides->setStretchFactor(1, 1);
    sides->setSizes({kListWidth, kFirstSize.width() - kListWidth});
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(look::kLargeGap, look::kLargeGap, look::kLargeGap, look::kLargeGap);
    layout->addWidget(sides);
    connectList();
    showSelection();
    restoreGeometryFromSettings();
}

PresetsManagerWindow::~PresetsManagerWindow() = default;

QAction *PresetsManagerWindow::makeAction(const char *name, const QString &text, const QString &toolTip,
                                          const char *icon, const QKeySequence &shortcut,
                                          void (PresetsManagerWindow::*run)())
{
    auto *const action = new QAction(text, this);
    action->setObjectName(QLatin1StringView(name));
    const QString keys = shortcut.toString(QKeySequence::NativeText);
    action->setToolTip(keys.isEmpty() ? toolTip : QStringLiteral("%1 (%2)").arg(toolTip, keys));
    if (*icon != '\0')
        action->setIcon(QIcon(QStringLiteral(":/icons/%1.svg").arg(QLatin1StringView(icon))));
    action->setShortcut(shortcut);
    connect(action, &QAction::triggered, this, run);
    addAction(action);
    return action;
}

void PresetsManagerWindow::makeActions()
{
    using W = PresetsManagerWindow;
    makeAction("addPreset", tr("Add Preset"), tr("Add a new preset below the selected ones"), "add",
               {Qt::CTRL | Qt::Key_N}, &W::createNewPreset);
    m_remove = makeAction("removePresets", tr("Remove Presets"), tr("Remove the selected presets"), "remove",
                          {}, &W::removePresets);
    m_duplicate = makeAction("duplicatePresets", tr("Duplicate Presets"), tr("Copy the selected presets"),
                             "copy", {Qt::CTRL | Qt::Key_D}, &W::duplicatePresets);
    m_moveUp = makeAction("movePresetsUp", tr("Move Up"), tr("Move the selected presets up"), "move-up",
                          {Qt::ALT | Qt::SHIFT | Qt::Key_Up}, &W::movePresetsUp);
    m_moveDown = makeAction("movePresetsDown", tr("Move Down"), tr("Move the selected presets down"),
                            "move-down", {Qt::ALT | Qt::SHIFT | Qt::Key_Down}, &W::movePresetsDown);
    makeAction("importPresets", tr("Import…"), tr("Add the presets of a file"), "", {Qt::CTRL | Qt::Key_O},
               &W::importPresets);
    m_export = makeAction("exportPresets", tr("Export…"), tr("Write the selected presets to a file"), "",
                          {Qt::CTRL | Qt::Key_S}, &W::exportPresets);
    makeAction("searchPresets", tr("Search"), tr("Show only some presets"), "", {Qt::CTRL | Qt::Key_F},
               &W::startSearch)
        ->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_F), QKeySequence(Qt::Key_Slash)});
    auto *const close = new QAction(tr("Close"), this);
    close->setShortcut({Qt::CTRL | Qt::Key_W});
    connect(close, &QAction::triggered, this, &QWidget::close);
    addAction(close);
    for (const ActionId id : {ActionId::Undo, ActionId::Redo})
        addAction(m_services.actions.action(id));
}

QWidget *PresetsManagerWindow::makeListSide()
{
    m_searchField->setObjectName(QStringLiteral("searchField"));
    m_searchField->setPlaceholderText(tr("Search presets"));
    m_searchField->setAccessibleName(tr("Search presets"));
    m_searchField->setToolTip(tr("Show only presets whose names contain this text"));
    m_searchField->setClearButtonEnabled(true);
    m_searchField->addAction(QIcon(QStringLiteral(":/icons/search.svg")), QLineEdit::LeadingPosition);
    m_list->setObjectName(QStringLiteral("presetsListTable"));
    m_list->setAccessibleName(isWatermark() ? tr("Watermark presets") : tr("Saving presets"));
    m_list->setWhatsThis(tr("All presets of this kind. Drag them into another order; names in red belong to "
                            "presets that cannot be used."));
    m_list->setEmptyHint(tr("No presets yet"));
    m_list->setAllowsReordering();
    m_presets->showPictures(*m_list);

    const auto addRow = [](QVBoxLayout *layout, const QList<QAction *> &left, const QList<QAction *> &right) {
        auto *const row = new QHBoxLayout;
        row->setSpacing(look::kSmallGap);
        for (QAction *const action : left)
            row->addWidget(makeButton(action));
        row->addStretch();
        for (QAction *const action : right)
            row->addWidget(makeButton(action));
        layout->addLayout(row);
    };
    const auto action = [this](const char *name) { return findChild<QAction *>(QLatin1StringView(name)); };
    auto *const side = new QWidget;
    auto *const layout = new QVBoxLayout(side);
    layout->addStrut(kMinListWidth); // buttons with long texts, or in a large font, need more
    layout->setContentsMargins(0, 0, look::kGap, 0);
    layout->setSpacing(look::kGap);
    auto *const help = new HelpButton(isWatermark() ? QStringLiteral("presets.html#manager")
                                                    : QStringLiteral("saving-presets.html#managing"),
                                      tr("Help on presets"), tr("Explain presets (F1)"));
    auto *const top = new QHBoxLayout;
    top->addWidget(m_searchField, 1);
    top->addWidget(help->withKey());
    layout->addLayout(top);
    layout->addWidget(m_list, 1);
    addRow(layout, {action("addPreset"), m_remove, m_duplicate}, {m_moveUp, m_moveDown});
    addRow(layout, {action("importPresets"), m_export},
           {m_services.actions.action(ActionId::Undo), m_services.actions.action(ActionId::Redo)});
    return side;
}

QWidget *PresetsManagerWindow::makeEditorSide()
{
    m_nameField->setObjectName(QStringLiteral("presetNameField"));
    auto *const label = new QLabel(tr("&Name"));
    label->setObjectName(QStringLiteral("presetNameLabel"));
    label->setBuddy(m_nameField);
    m_nameField->setAccessibleName(tr("Name of the preset"));
    m_nameField->setToolTip(tr("The name in lists and menus"));
    m_severalLabel->setObjectName(QStringLiteral("multiplePresetsWarningLabel"));
    m_severalLabel->setWordWrap(true);
    m_severalLabel->setTextFormat(Qt::PlainText);

    auto *const name = new QHBoxLayout;
    name->setSpacing(look::kLargeGap);
    name->addWidget(label);
    name->addWidget(m_nameField, 1);
    QWidget *const editor = m_presets->editor();
    editor->setObjectName(QStringLiteral("presetViewContainer"));
    auto *const page = new QWidget;
    auto *const layout = new QVBoxLayout(page);
    layout->setContentsMargins(look::kGap, 0, 0, 0);
    layout->setSpacing(look::kLargeGap);
    layout->addLayout(name);
    layout->addWidget(m_severalLabel);
    layout->addWidget(editor, isWatermark() ? 1 : 0);
    if (!isWatermark())
        layout->addStretch();
    m_pages->addWidget(makeNoSelectionPage());
    m_pages->addWidget(page);
    return m_pages;
}

QWidget *PresetsManagerWindow::makeNoSelectionPage()
{
    auto *const label = new QLabel(tr("No preset is selected."));
    label->setObjectName(QStringLiteral("noSelectedPresetsLabel"));
    label->setAlignment(Qt::AlignCenter);
    auto *const examples = new QPushButton(tr("Import Examples"));
    examples->setObjectName(QStringLiteral("importExamplePresetsButton"));
    examples->setToolTip(tr("Add the presets that come with the program"));
    connect(examples, &QAbstractButton::clicked, this, &PresetsManagerWindow::importExamplePresets);
    auto *const page = new QWidget;
    auto *const layout = new QVBoxLayout(page);
    layout->setSpacing(look::kLargeGap);
    layout->addStretch();
    layout->addWidget(label);
    layout->addWidget(examples, 0, Qt::AlignHCenter);
    layout->addStretch();
    return page;
}

void PresetsManagerWindow::connectList()
{
    connect(m_searchField, &QLineEdit::textChanged, m_list, &PresetListView::setSearchText);
    connect(m_searchField, &QLineEdit::textChanged, this, &PresetsManagerWindow::updateActions);
    connect(m_searchField, &QLineEdit::returnPressed, m_list, [this] { m_list->setFocus(); });
    connect(m_list, &PresetListView::selectedRowsChanged, this, &PresetsManagerWindow::showSelection);
    connect(m_list, &PresetListView::deletePressed, m_remove, &QAction::trigger);
    connect(m_list, &PresetListView::returnPressed, this, &PresetsManagerWindow::editName);
    connect(m_list, &PresetListView::rowsDropped, this,
            [this](const IndexList &rows, int toRow) { m_presets->move(rows, toRow); });
    connect(m_nameField, &QLineEdit::textEdited, this, [this](const QString &name) {
        if (m_editedRow >= 0)
            m_presets->rename(m_editedRow, name);
    });
    connect(&m_presets->list(), &PresetListSignals::edited, this, [this](int row) {
        if (row == m_editedRow)
            showName();
    });
    m_presets->setShowRows([this](const IndexList &rows) { selectRows(rows); });
    // The rows of the selected presets change without a change of the selection.
    const auto changed = [this](auto signal) {
        connect(&m_presets->list(), signal, this, &PresetsManagerWindow::showSelection);
    };
    changed(&PresetListSignals::inserted);
    changed(&PresetListSignals::removed);
    changed(&PresetListSignals::moved);
}

void PresetsManagerWindow::restoreGeometryFromSettings()
{
    resize((isWatermark() ? kFirstSize : kFirstSizeForSaving).boundedTo(screen()->availableSize()));
    restoreGeometry(QByteArray::fromBase64(m_services.defaults.stringForKey(objectName()).toLatin1()));
}

void PresetsManagerWindow::present()
{
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void PresetsManagerWindow::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (!event->spontaneous()) {
        m_list->setFocus();
        Q_EMIT shownChanged();
    }
}

void PresetsManagerWindow::closeEvent(QCloseEvent *event)
{
    m_services.defaults.setObject(objectName(), QString::fromLatin1(saveGeometry().toBase64()));
    QWidget::closeEvent(event);
}

void PresetsManagerWindow::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    if (event->spontaneous()) // minimized
        return;
    Q_EMIT shownChanged();
    m_services.controller.presetsStore().saveChanges();
}

void PresetsManagerWindow::createNewPreset()
{
    selectRows({m_presets->insertNew(m_list->selectedRows())});
    editName();
}

void PresetsManagerWindow::editName()
{
    m_nameField->setFocus();
    m_nameField->selectAll();
}

void PresetsManagerWindow::duplicatePresets()
{
    IndexList rows = m_list->selectedRows();
    std::iota(rows.begin(), rows.end(), m_presets->duplicate(rows));
    selectRows(rows);
}

void PresetsManagerWindow::removePresets()
{
    const int next = m_presets->remove(m_list->selectedRows());
    if (next >= 0)
        m_list->selectRows({next});
}

void PresetsManagerWindow::movePresetsUp()
{
    m_presets->step(m_list->selectedRows(), Step::Up);
}

void PresetsManagerWindow::movePresetsDown()
{
    m_presets->step(m_list->selectedRows(), Step::Down);
}

void PresetsManagerWindow::startSearch()
{
    m_searchField->setFocus();
    m_searchField->selectAll();
}

QStringList PresetsManagerWindow::fileFilters() const
{
    return {isWatermark() ? tr("Watermark presets (*.pxwpr *.xml)") : tr("Saving presets (*.pxspr *.xml)"),
            tr("All files (*)")};
}

void PresetsManagerWindow::exportPresets()
{
    auto *const dialog = new QFileDialog(this, tr("Export presets"), lastFolder());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setNameFilters(fileFilters());
    dialog->setDefaultSuffix(isWatermark() ? QStringLiteral("pxwpr") : QStringLiteral("pxspr"));
    connect(dialog, &QFileDialog::fileSelected, this,
            [this, rows = m_list->selectedRows()](const QString &path) {
                lastFolder() = QFileInfo(path).path();
                const Result<void> written = m_presets->write(rows, path);
                if (!written)
                    m_services.alerts.run({.style = Alert::Style::Warning,
                                           .title = tr("The presets are not exported"),
                                           .text = written.error().text});
            });
    dialog->open();
}

void PresetsManagerWindow::importPresets()
{
    auto *const dialog = new QFileDialog(this, tr("Import Presets"), lastFolder());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptOpen);
    dialog->setFileMode(QFileDialog::ExistingFile);
    dialog->setNameFilters(fileFilters());
    dialog->setOption(QFileDialog::ReadOnly); // else Delete removes files
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString &path) {
        lastFolder() = QFileInfo(path).path();
        m_searchField->clear(); // which might hide them
        m_services.controller.presetCommands().importPresetsFile(path, m_kind);
    });
    dialog->open();
}

void PresetsManagerWindow::importExamplePresets()
{
    const int before = m_presets->count();
    m_presets->importExamples();
    m_searchField->clear();
    m_list->scrollTo(m_list->model()->index(before, 0), QAbstractItemView::PositionAtTop);
}

void PresetsManagerWindow::selectRows(const IndexList &rows)
{
    m_searchField->clear(); // which might hide them
    m_list->selectRows(rows);
}

/// The last selected preset is edited.
void PresetsManagerWindow::showSelection()
{
    const IndexList rows = m_list->selectedRows();
    const int current = m_list->currentIndex().isValid() ? m_list->rowOf(m_list->currentIndex()) : -1;
    m_editedRow = rows.contains(current) ? current : rows.isEmpty() ? -1 : rows.last();
    m_presets->edit(m_editedRow);
    m_pages->setCurrentIndex(rows.isEmpty() ? NoSelection : Editor);
    m_severalLabel->setVisible(rows.size() > 1);
    if (rows.size() == 1)
        m_list->scrollTo(m_list->selectionModel()->selectedRows().first());
    showName();
    updateActions();
}

void PresetsManagerWindow::showName()
{
    if (m_editedRow < 0)
        return;
    const QString name = m_presets->name(m_editedRow);
    if (m_nameField->text() != name)
        m_nameField->setText(name);
    const auto count = static_cast<int>(m_list->selectedRows().size());
    m_severalLabel->setText(tr("%n presets are selected. You edit “%1”.", nullptr, count).arg(name));
}

void PresetsManagerWindow::updateActions()
{
    const IndexList rows = m_list->selectedRows();
    for (QAction *const action : {m_remove, m_duplicate, m_export})
        action->setEnabled(!rows.isEmpty());
    const bool isWhole = m_searchField->text().isEmpty(); // else the neighbors are not in sight
    m_moveUp->setEnabled(isWhole && canStep(rows, m_presets->count(), Step::Up));
    m_moveDown->setEnabled(isWhole && canStep(rows, m_presets->count(), Step::Down));
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/mainwindow.h"

#include "app/appcontroller.h"
#include "platform/alerts.h"
#include "platform/applicationname.h"
#include "platform/settings.h"
#include "platform/userdefaults.h"
#include "ui/browser/imagebrowserviewcontroller.h"
#include "ui/browser/imagelistpane.h"
#include "ui/presets/presetspanel.h"
#include "ui/widgets/commandactions.h"
#include "ui/widgets/filedrops.h"
#include "ui/widgets/imagechooser.h"
#include "ui/window/positionsbox.h"
#include "ui/window/preferencesdialog.h"
#include "ui/window/statuslineview.h"
#include "ui/window/windowcommands.h"

#include <QAction>
#include <QActionGroup>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QHBoxLayout>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QSplitter>
#include <QTimer>
#include <QWhatsThis>
#include <QWindow>

namespace plexa
{

namespace
{

// How near the divider between preview and photos comes to the top and to the bottom.
constexpr int kMinPreviewHeight = 100;
constexpr int kMinListHeight = 150;

constexpr qsizetype kListedFailures = 10;

constexpr QSize kFirstSize(1180, 740);

// Only this window knows what stands in them.
const QString kGeometryKey = QStringLiteral("mainWindowGeometry");
const QString kSplitKey = QStringLiteral("imageViewBrowserSplitView");
const QString kPanelSplitKey = QStringLiteral("panelSplitView");

QByteArray storedState(const UserDefaults &defaults, const QString &key)
{
    return QByteArray::fromBase64(defaults.stringForKey(key).toLatin1());
}

void storeState(UserDefaults &defaults, const QString &key, const QByteArray &state)
{
    defaults.setObject(key, QString::fromLatin1(state.toBase64()));
}

} // namespace

MainWindow::MainWindow(const Services &services)
    : m_services(services)
    , m_actions(new CommandActions(this))
{
    setObjectName(QStringLiteral("mainWindow"));
    setWindowTitle(applicationNameWithCompany(false, false, true));
    setContextMenuPolicy(Qt::NoContextMenu);
    setAcceptDrops(true);
    makeViews();
    m_actions->fillMenuBar(menuBar());
    connectCommands();
    restoreGeometryFromSettings();
    updateCommands();
}

MainWindow::~MainWindow() = default;

void MainWindow::makeViews()
{
    auto *const previewPlace = new QWidget;
    previewPlace->setObjectName(QStringLiteral("imageViewPlace"));
    previewPlace->setBackgroundRole(QPalette::Dark);
    previewPlace->setAutoFillBackground(true);
    previewPlace->setMinimumHeight(kMinPreviewHeight);
    m_imageListPane =
        new ImageListPane({m_services.controller, m_services.defaults, *m_actions, m_services.threads});
    m_imageListPane->setMinimumHeight(kMinListHeight);

    m_imageViewBrowserSplitView = new QSplitter(Qt::Vertical);
    m_imageViewBrowserSplitView->setObjectName(QStringLiteral("imageViewBrowserSplitView"));
    m_imageViewBrowserSplitView->setChildrenCollapsible(false);
    m_imageViewBrowserSplitView->addWidget(previewPlace);
    m_imageViewBrowserSplitView->addWidget(m_imageListPane);
    m_imageViewBrowserSplitView->setStretchFactor(0, 3);
    m_imageViewBrowserSplitView->setStretchFactor(1, 2);
    m_imageViewBrowserSplitView->setSizes({400, 300});

    m_panelSplitView = new QSplitter(Qt::Horizontal);
    m_panelSplitView->setObjectName(QStringLiteral("panelSplitView"));
    m_panelSplitView->setChildrenCollapsible(false);
    m_panelSplitView->addWidget(m_imageViewBrowserSplitView);
    m_panelSplitView->addWidget(makeRightPanel());
    m_panelSplitView->setStretchFactor(0, 1);
    m_panelSplitView->setStretchFactor(1, 0);
    m_panelSplitView->setSizes({860, 320});

    auto *const central = new QWidget;
    auto *const layout = new QVBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_panelSplitView, 1);
    layout->addWidget(makeBottomBar());
    setCentralWidget(central);
}

QWidget *MainWindow::makeRightPanel()
{
    auto *const panel = new QWidget;
    auto *const layout = new QVBoxLayout(panel);
    layout->setContentsMargins(6, 12, 12, 8);
    layout->setSpacing(12);
    m_presetsPanel = new PresetsPanel(m_services.controller.appliedPresets(), *m_actions);
    layout->addWidget(m_presetsPanel, 1);
    layout->addWidget(new PositionsBox(*m_actions));
    panel->setMinimumWidth(270);
    return panel;
}

QWidget *MainWindow::makeBottomBar()
{
    auto *const bar = new QWidget;
    auto *const line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFixedHeight(1);
    line->setStyleSheet(QStringLiteral("background: #cfd3d7; border: none;"));
    auto *const status = new StatusLineView(m_services.controller.statusManager());
    auto *const saveSelected = new QPushButton(tr("Save Selected…"));
    auto *const saveAll = new QPushButton(tr("Save All…"));
    m_actions->bindButton(ActionId::SaveSelected, saveSelected);
    m_actions->bindButton(ActionId::SaveAll, saveAll);
    connect(status, &StatusLineView::stopPressed, &m_services.controller, &AppController::stopAllOperations);

    auto *const row = new QHBoxLayout;
    row->setContentsMargins(12, 7, 12, 8);
    row->setSpacing(8);
    row->addWidget(status, 1);
    row->addWidget(saveSelected);
    row->addWidget(saveAll);
    auto *const layout = new QVBoxLayout(bar);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(line);
    layout->addLayout(row);
    return bar;
}

void MainWindow::connectCommands()
{
    AppController &controller = m_services.controller;
    connectControllerCommands(*m_actions, controller);
    connectWindowCommands();

    m_actions->setHandler(ActionId::ApplyPresets, [this] { m_presetsPanel->addSelectedWPresetsToApplied(); });
    m_actions->setCondition(ActionId::ApplyPresets,
                            [this] { return !m_presetsPanel->selectedWPresets().empty(); });
    connect(m_presetsPanel, &PresetsPanel::presetsManagerWanted, this,
            [this] { m_actions->run(ActionId::ToggleWatermarkPresets); });
    connect(m_presetsPanel, &PresetsPanel::wPresetsSelectionChanged, this, &MainWindow::scheduleUpdate);

    auto *const modes = new QActionGroup(this);
    for (const ActionId id : {ActionId::SingleMode, ActionId::PresetsMode}) {
        m_actions->action(id)->setCheckable(true);
        modes->addAction(m_actions->action(id));
    }
    const auto showMode = [this](bool isSingle) {
        m_actions->action(isSingle ? ActionId::SingleMode : ActionId::PresetsMode)->setChecked(true);
    };
    connect(&controller.appliedPresets(), &AppliedPresets::modeChanged, this, showMode);
    showMode(controller.appliedPresets().isInSingleMode());

    connect(&controller, &AppController::commandStateChanged, this, &MainWindow::scheduleUpdate);
    connect(&controller.batchSave(), &BatchSave::started, this, [this] { setContentEnabled(false); });
    connect(&controller.batchSave(), &BatchSave::finished, this, [this] { setContentEnabled(true); });
    ImageBrowserViewController &browser = m_imageListPane->browserController();
    connect(&browser, &ImageBrowserViewController::browserZoomFactorChanged, this,
            &MainWindow::scheduleUpdate);
    connect(&browser, &ImageBrowserViewController::copiesFailed, this, &MainWindow::reportFailedCopies);
    connect(m_actions, &CommandActions::commandRun, this, &MainWindow::scheduleUpdate);
}

void MainWindow::connectWindowCommands()
{
    const auto add = [this](ChooserKind kind) {
        return [this, kind] {
            chooseImages(kind, this, [this](const QStringList &paths) {
                m_services.controller.gathering().scanImagesAtPaths(paths);
            });
        };
    };
    m_actions->setHandler(ActionId::AddImages, add(ChooserKind::Files));
    m_actions->setHandler(ActionId::AddFolder, add(ChooserKind::Folder));
    m_actions->setHandler(ActionId::CloseWindow, [this] { close(); });
    m_actions->setHandler(ActionId::Quit, [this] { Q_EMIT quitWanted(); });
    m_actions->setHandler(ActionId::Find, [this] { m_imageListPane->startSearch(); });
    m_actions->setHandler(ActionId::Preferences, [this] {
        auto *const dialog = new PreferencesDialog(m_services.defaults, this);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        connect(dialog, &PreferencesDialog::settingChanged, this, [this](QLatin1String key) {
            if (key == settings::combineAllAppliedPresetsInImage)
                Q_EMIT m_services.controller.previewOutdated();
            else if (key == settings::browserShowOriginalOnMouseOver)
                m_imageListPane->browserController().followShowOriginalOnMouseOver();
        });
        dialog->open();
    });
    m_actions->setHandler(ActionId::Minimize, [this] { showMinimized(); });
    m_actions->setHandler(ActionId::ToggleFullScreen,
                          [this] { setWindowState(windowState() ^ Qt::WindowFullScreen); });
    m_actions->setHandler(ActionId::ShowMainWindow, [this] { present(); });
    m_actions->setHandler(ActionId::ContextHelp, [] { QWhatsThis::enterWhatsThisMode(); });
    m_actions->setHandler(ActionId::About, [this] { showAbout(); });
}

void MainWindow::restoreGeometryFromSettings()
{
    resize(kFirstSize);
    restoreGeometry(storedState(m_services.defaults, kGeometryKey));
    m_imageViewBrowserSplitView->restoreState(storedState(m_services.defaults, kSplitKey));
    m_panelSplitView->restoreState(storedState(m_services.defaults, kPanelSplitKey));
}

void MainWindow::rememberGeometry()
{
    storeState(m_services.defaults, kGeometryKey, saveGeometry());
    storeState(m_services.defaults, kSplitKey, m_imageViewBrowserSplitView->saveState());
    storeState(m_services.defaults, kPanelSplitKey, m_panelSplitView->saveState());
}

void MainWindow::setWPresets(const WPresetList &presets)
{
    m_presetsPanel->setWPresets(presets);
}

std::shared_ptr<WPreset> MainWindow::selectedWPreset() const
{
    const WPresetList selected = m_presetsPanel->selectedWPresets();
    return selected.size() == 1 ? selected.front() : nullptr;
}

void MainWindow::present()
{
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    rememberGeometry();
    QMainWindow::closeEvent(event);
    Q_EMIT closed();
}

void MainWindow::keyPressEvent(QKeyEvent *event)
{
    // Whatever else has to be held down for it on this keyboard.
    if (event->text() == QLatin1String("/") || event->key() == Qt::Key_Slash)
        m_imageListPane->startSearch();
    else
        QMainWindow::keyPressEvent(event);
}

/// Files may be dropped anywhere on the window.
void MainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    acceptFiles(event);
}

void MainWindow::dropEvent(QDropEvent *event)
{
    acceptFiles(event);
    m_services.controller.gathering().scanImagesAtPaths(droppedFiles(event->mimeData()));
}

/// Many small changes are looked at once.
void MainWindow::scheduleUpdate()
{
    if (m_isUpdateScheduled)
        return;
    m_isUpdateScheduled = true;
    QTimer::singleShot(0, this, &MainWindow::updateCommands);
}

void MainWindow::updateCommands()
{
    m_isUpdateScheduled = false;
    m_actions->update(m_services.controller.commandState());
}

/// Of copies that were dragged or copied to another program.
ImageBrowserViewController &MainWindow::browser()
{
    return m_imageListPane->browserController();
}

void MainWindow::setContentEnabled(bool isEnabled)
{
    if (!isEnabled)
        m_focusBefore = focusWidget();
    m_panelSplitView->setEnabled(isEnabled);
    if (isEnabled && m_focusBefore)
        m_focusBefore->setFocus();
}

void MainWindow::reportFailedCopies(const QStringList &failures)
{
    Alert alert;
    alert.style = Alert::Style::Warning;
    alert.title = tr("Not all copies could be made");
    alert.text = failures.mid(0, kListedFailures).join(QLatin1Char('\n'));
    if (failures.size() > kListedFailures)
        alert.text += tr("\n  ...and %1 more...").arg(failures.size() - kListedFailures);
    m_services.alerts.run(alert);
}

void MainWindow::showAbout()
{
    const BundleInfo bundle = BundleInfo::own();
    QMessageBox box(this);
    box.setWindowTitle(tr("About %1").arg(bundle.bundleName));
    box.setIconPixmap(windowIcon().pixmap(64));
    box.setText(QStringLiteral("%1 %2").arg(bundle.bundleName, bundle.shortVersionString));
    box.setInformativeText(tr("Puts watermarks on photographs, many at a time.\n\n"
                              "Copyright: the %1 authors. Free software under the GNU General Public "
                              "License, version 3 or later; it comes without any warranty.")
                               .arg(bundle.bundleName));
    box.exec();
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/mainwindow.h"

#include "app/appcontroller.h"
#include "platform/alerts.h"
#include "platform/applicationname.h"
#include "platform/userdefaults.h"
#include "ui/browser/imagebrowserviewcontroller.h"
#include "ui/browser/imagelistpane.h"
#include "ui/presets/presetspanel.h"
#include "ui/preview/imageviewcontroller.h"
#include "ui/preview/previewpane.h"
#include "ui/widgets/commandactions.h"
#include "ui/widgets/filedrops.h"
#include "ui/widgets/sectiontitle.h"
#include "ui/window/statuslineview.h"
#include "ui/window/windowcommands.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QDragEnterEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenuBar>
#include <QPushButton>
#include <QSplitter>
#include <QToolButton>
#include <QWindow>

namespace plexa
{

namespace
{

// The least heights that the divider between preview and photos leaves.
constexpr int kMinPreviewHeight = 100;
constexpr int kMinListHeight = 150;

constexpr qsizetype kListedFailures = 10;

constexpr QSize kFirstSize(1180, 740);

// No other class reads these settings.
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
    , m_actions(new CommandActions(this, [this] { return commandState(); }))
{
    setObjectName(QStringLiteral("mainWindow"));
    setWindowTitle(applicationName());
    setContextMenuPolicy(Qt::NoContextMenu);
    setAcceptDrops(true);
    makeViews();
    m_actions->fillMenuBar(menuBar());
    connectCommands();
    restoreGeometryFromSettings();
    m_actions->update();
}

MainWindow::~MainWindow() = default;

void MainWindow::makeViews()
{
    m_previewPane = new PreviewPane({m_services.controller, m_services.defaults, *m_actions});
    m_previewPane->setMinimumHeight(kMinPreviewHeight);
    m_imageListPane =
        new ImageListPane({m_services.controller, m_services.defaults, *m_actions, m_services.threads});
    m_imageListPane->setMinimumHeight(kMinListHeight);

    m_imageViewBrowserSplitView = new QSplitter(Qt::Vertical);
    m_imageViewBrowserSplitView->setObjectName(QStringLiteral("imageViewBrowserSplitView"));
    m_imageViewBrowserSplitView->setChildrenCollapsible(false);
    m_imageViewBrowserSplitView->addWidget(m_previewPane);
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
    AppController &controller = m_services.controller;
    auto *const panel = new QWidget;
    auto *const layout = new QVBoxLayout(panel);
    layout->setContentsMargins(6, 12, 12, 8);
    layout->setSpacing(12);
    m_presetsPanel = new PresetsPanel(controller.appliedPresets(), controller.presetsStore(), *m_actions);
    layout->addWidget(m_presetsPanel, 1);

    auto *const positions = new QVBoxLayout;
    positions->setSpacing(4);
    positions->addWidget(sectionTitle(tr("Manual positions")));
    auto *const buttons = new QHBoxLayout;
    buttons->setSpacing(2);
    for (const ActionId id : {ActionId::CopyPosition, ActionId::CopyAllPositions, ActionId::PastePositions})
        buttons->addWidget(m_actions->makeButton(id, panel));
    buttons->addStretch();
    for (const ActionId id : {ActionId::ResetPosition, ActionId::ResetAllPositions})
        buttons->addWidget(m_actions->makeButton(id, panel));
    positions->addLayout(buttons);
    layout->addLayout(positions);
    panel->setMinimumWidth(270);
    return panel;
}

/// The status line and the buttons that save.
QWidget *MainWindow::makeBottomBar()
{
    auto *const bar = new QWidget;
    auto *const line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFixedHeight(1);
    line->setStyleSheet(QStringLiteral("background: #cfd3d7; border: none;"));
    auto *const row = new QHBoxLayout;
    row->setContentsMargins(12, 7, 12, 8);
    row->setSpacing(8);
    row->addWidget(new StatusLineView(m_services.controller), 1);
    for (const auto &[id, text] :
         {std::pair(ActionId::SaveSelected, tr("Save Selected…")), {ActionId::SaveAll, tr("Save All…")}}) {
        auto *const button = new QPushButton(text);
        m_actions->bindButton(id, button);
        row->addWidget(button);
    }
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
    connectWindowCommands(*m_actions, m_services, *this, *m_imageListPane);
    for (const ActionId id : {ActionId::MovePhotosUp, ActionId::MovePhotosDown})
        m_actions->useShortcutIn(*m_imageViewBrowserSplitView, id);
    connect(&controller, &AppController::commandStateChanged, m_actions, &CommandActions::scheduleUpdate);
    ImageBrowserViewController &browser = m_imageListPane->browserController();
    connect(&browser, &ImageBrowserViewController::browserZoomFactorChanged, m_actions,
            &CommandActions::scheduleUpdate);
    connect(m_previewPane, &PreviewPane::keyForImageList, this, &MainWindow::forwardToImageList);
    connect(&browser, &ImageBrowserViewController::copiesFailed, this, &MainWindow::reportFailedCopies);
    connect(&controller.batchSave(), &BatchSave::started, this, [this] { setContentEnabled(false); });
    connect(&controller.batchSave(), &BatchSave::finished, this, [this] { setContentEnabled(true); });
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
    // Some keyboards need a modifier for it.
    if (event->text() == QLatin1String("/") || event->key() == Qt::Key_Slash)
        m_imageListPane->startSearch();
    else
        QMainWindow::keyPressEvent(event);
}

/// A key that the preview does not use itself.
void MainWindow::forwardToImageList(QKeyEvent *event)
{
    QKeyEvent copy(event->type(), event->key(), event->modifiers(), event->text(), event->isAutoRepeat());
    copy.ignore();
    QCoreApplication::sendEvent(m_imageListPane->shownView(), &copy);
    event->setAccepted(copy.isAccepted());
}

/// Files may be dropped anywhere on the window.
void MainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    acceptFiles(event);
}

void MainWindow::dropEvent(QDropEvent *event)
{
    acceptFiles(event);
    m_services.controller.addFiles(droppedFiles(event->mimeData()));
}

CommandState MainWindow::commandState() const
{
    CommandState state = m_services.controller.commandState();
    state.nSelectedWPresets = static_cast<qsizetype>(m_presetsPanel->selectedWPresets().size());
    state.canZoomInPreview = m_previewPane->imageViewController().canZoomIn();
    state.canZoomOutPreview = m_previewPane->imageViewController().canZoomOut();
    return state;
}

void MainWindow::setContentEnabled(bool isEnabled)
{
    if (!isEnabled)
        m_focusBefore = focusWidget();
    m_panelSplitView->setEnabled(isEnabled);
    if (isEnabled && m_focusBefore)
        m_focusBefore->setFocus();
}

/// Of copies that were dragged or copied to another program.
void MainWindow::reportFailedCopies(const QStringList &failures)
{
    Alert alert;
    alert.style = Alert::Style::Warning;
    alert.title = tr("Not all copies could be written");
    alert.text = failures.mid(0, kListedFailures).join(QLatin1Char('\n'));
    if (failures.size() > kListedFailures)
        alert.text += tr("\n  ...and %1 more...").arg(failures.size() - kListedFailures);
    m_services.alerts.run(alert);
}

} // namespace plexa

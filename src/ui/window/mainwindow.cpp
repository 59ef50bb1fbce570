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
#include "ui/saving/savingprogressview.h"
#include "ui/widgets/commandactions.h"
#include "ui/widgets/dropframe.h"
#include "ui/widgets/filedrops.h"
#include "ui/widgets/look.h"
#include "ui/widgets/messagepage.h"
#include "ui/window/statuslineview.h"
#include "ui/window/windowcommands.h"

#include <QAction>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QDragEnterEvent>
#include <QHBoxLayout>
#include <QMenuBar>
#include <QPushButton>
#include <QScreen>
#include <QSplitter>
#include <QStackedWidget>
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
constexpr int kFirstPanelWidth = 320;
constexpr int kMinPanelWidth = 252; // without the margins
constexpr int kPreviewShare = 55;   // percent of the height; the rest belongs to the photos

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

/// The text of a command without its mnemonic.
QString plainText(const QAction &action)
{
    return action.text().remove(QLatin1Char('&'));
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
    m_panelSplitView = new QSplitter(Qt::Horizontal);
    m_panelSplitView->setObjectName(QStringLiteral("panelSplitView"));
    m_panelSplitView->setChildrenCollapsible(false);
    m_panelSplitView->addWidget(makeLeftPanel());
    m_panelSplitView->addWidget(makeRightPanel());
    m_panelSplitView->setStretchFactor(0, 1);
    m_panelSplitView->setStretchFactor(1, 0);
    m_panelSplitView->setSizes({kFirstSize.width() - kFirstPanelWidth, kFirstPanelWidth});

    m_contentOrSaving = new QStackedWidget;
    m_contentOrSaving->addWidget(m_panelSplitView);
    m_contentOrSaving->addWidget(new SavingProgressView(m_services.controller.batchSave()));

    auto *const central = new QWidget;
    auto *const layout = new QVBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_contentOrSaving, 1);
    layout->addWidget(makeBottomBar());
    setCentralWidget(central);
    m_dropFrame = new DropFrame(this, central);
}

/// Preview and photos, or a page in place of both.
QWidget *MainWindow::makeLeftPanel()
{
    m_previewPane = new PreviewPane({m_services.controller, *m_actions});
    m_previewPane->setMinimumHeight(kMinPreviewHeight);
    m_imageListPane =
        new ImageListPane({m_services.controller, m_services.defaults, *m_actions, m_services.threads});
    m_imageListPane->setMinimumHeight(kMinListHeight);

    m_imageViewBrowserSplitView = new QSplitter(Qt::Vertical);
    m_imageViewBrowserSplitView->setObjectName(QStringLiteral("imageViewBrowserSplitView"));
    m_imageViewBrowserSplitView->setChildrenCollapsible(false);
    m_imageViewBrowserSplitView->addWidget(m_previewPane);
    m_imageViewBrowserSplitView->addWidget(m_imageListPane);
    m_imageViewBrowserSplitView->setStretchFactor(0, kPreviewShare);
    m_imageViewBrowserSplitView->setStretchFactor(1, 100 - kPreviewShare);
    m_imageViewBrowserSplitView->setSizes({10 * kPreviewShare, 10 * (100 - kPreviewShare)});

    m_photosOrEmptyPage = new QStackedWidget;
    m_emptyPage = makeEmptyPage();
    m_photosOrEmptyPage->addWidget(m_emptyPage);
    m_photosOrEmptyPage->addWidget(m_imageViewBrowserSplitView);
    return m_photosOrEmptyPage;
}

MessagePage *MainWindow::makeEmptyPage()
{
    auto *const page = new MessagePage(QStringLiteral("drop-photos"));
    page->setObjectName(QStringLiteral("emptyPage"));
    page->setTitle(tr("Drop photos or folders here"));
    page->setExplanation(
        tr("Your originals stay as they are. The grid holds up to %1 photos, the list any number.")
            .arg(ImageSet::kMaxImagesInBrowserMode));
    page->setIsDropTarget(true);
    for (const auto &[id, name] : {std::pair(ActionId::AddImages, "emptyPageAddPhotosButton"),
                                   {ActionId::AddFolder, "emptyPageAddFolderButton"}}) {
        auto *const button = new QPushButton(plainText(*m_actions->action(id)));
        button->setObjectName(QLatin1String(name));
        button->setIcon(m_actions->action(id)->icon());
        m_actions->bindButton(id, button);
        page->addButton(button);
    }
    return page;
}

/// Or the page in their place while there are none.
void MainWindow::showPhotos()
{
    const bool hadFocus = m_photosOrEmptyPage->isAncestorOf(focusWidget()) || !focusWidget();
    const bool isEmpty = m_services.controller.imageSet().images()->empty();
    QWidget *const page = isEmpty ? static_cast<QWidget *>(m_emptyPage) : m_imageViewBrowserSplitView;
    const bool isOther = m_photosOrEmptyPage->currentWidget() != page;
    m_photosOrEmptyPage->setCurrentWidget(page);
    if (hadFocus && (isOther || !isVisible()))
        (isEmpty ? m_emptyPage : m_imageListPane->shownView())->setFocus();
}

QWidget *MainWindow::makeRightPanel()
{
    auto *const panel = new QWidget;
    auto *const layout = new QVBoxLayout(panel);
    layout->setContentsMargins(look::kGap, look::kLargeGap, look::kLargeGap, look::kGap);
    layout->setSpacing(look::kLargeGap);
    m_presetsPanel = new PresetsPanel(m_services.controller, m_services.defaults, *m_actions);
    layout->addWidget(m_presetsPanel, 1);
    layout->addStrut(kMinPanelWidth); // buttons with long texts, or in a large font, need more
    return panel;
}

/// The status line and the buttons that save.
QWidget *MainWindow::makeBottomBar()
{
    auto *const bar = new QWidget;
    auto *const line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFixedHeight(1);
    line->setStyleSheet(QStringLiteral("background: %1; border: none;").arg(look::kSeparator.name()));
    auto *const row = new QHBoxLayout;
    row->setContentsMargins(look::kLargeGap, look::kGap, look::kLargeGap, look::kGap);
    row->setSpacing(look::kGap);
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
    connectWindowCommands(*m_actions, m_services, *this, *m_imageListPane, *m_presetsPanel);
    for (const ActionId id : {ActionId::MovePhotosUp, ActionId::MovePhotosDown})
        m_actions->useShortcutIn(*m_imageViewBrowserSplitView, id);
    connect(&controller, &AppController::commandStateChanged, m_actions, &CommandActions::scheduleUpdate);
    connect(m_actions, &CommandActions::refused, &controller.statusManager(), &StatusManager::notify);
    const ImageSet &set = controller.imageSet();
    for (const auto changed : {&ImageSet::imagesInserted, &ImageSet::imagesRemoved, &ImageSet::listReset})
        connect(&set, changed, this, &MainWindow::showPhotos);
    showPhotos();
    ImageBrowserViewController &browser = m_imageListPane->browserController();
    connect(&browser, &ImageBrowserViewController::browserZoomFactorChanged, m_actions,
            &CommandActions::scheduleUpdate);
    connect(m_previewPane, &PreviewPane::keyForImageList, this, &MainWindow::forwardToImageList);
    connect(&browser, &ImageBrowserViewController::copiesFailed, this, &MainWindow::reportFailedCopies);
    connect(&controller.batchSave(), &BatchSave::started, this, [this] { showSaving(true); });
    connect(&controller.batchSave(), &BatchSave::finished, this, [this] { showSaving(false); });
}

void MainWindow::restoreGeometryFromSettings()
{
    resize(kFirstSize.boundedTo(screen()->availableSize()));
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
    if (m_mayClose && !m_mayClose()) {
        event->ignore();
        return;
    }
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
    if (!m_dropFrame->isEnabled()) {
        m_services.controller.statusManager().notify(reasonFor(Need::NoSave));
        return;
    }
    acceptFiles(event);
    m_emptyPage->setIsHovered(event->isAccepted());
}

void MainWindow::dragLeaveEvent(QDragLeaveEvent *)
{
    m_emptyPage->setIsHovered(false);
}

void MainWindow::dropEvent(QDropEvent *event)
{
    m_emptyPage->setIsHovered(false);
    if (!m_dropFrame->isEnabled()) // photos began to be saved during the drag
        return;
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

/// In place of the content, which gets its keyboard focus back afterwards.
void MainWindow::showSaving(bool isSaving)
{
    if (isSaving)
        m_focusBefore = focusWidget();
    m_panelSplitView->setEnabled(!isSaving);
    m_dropFrame->setEnabled(!isSaving);
    m_contentOrSaving->setCurrentIndex(isSaving ? 1 : 0);
    if (isSaving)
        m_contentOrSaving->currentWidget()->setFocus();
    else if (m_focusBefore)
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

// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/browser/imagelistpane.h"

#include "app/appcontroller.h"
#include "ui/browser/imagebrowserview.h"
#include "ui/browser/imagebrowserviewcontroller.h"
#include "ui/browser/imagelistview.h"
#include "ui/widgets/commandactions.h"
#include "ui/widgets/zoomslider.h"

#include <QAction>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QResizeEvent>
#include <QStackedWidget>
#include <QTimer>
#include <QToolButton>

namespace plexa
{

namespace
{

constexpr int kGroupGap = 10;

} // namespace

ImageListPane::ImageListPane(const Services &services, QWidget *parent)
    : QWidget(parent)
    , m_set(services.controller.imageSet())
    , m_actions(services.actions)
    , m_searchField(new QLineEdit)
    , m_imageListContainer(new QStackedWidget)
    , m_imageBrowser(new ImageBrowserView)
    , m_imageListTable(new ImageListView(m_set))
    , m_browserZoomSlider(new ZoomSlider(tr("Size of the thumbnails")))
    , m_imageMenu(new QMenu(this))
    , m_browserController(std::make_unique<ImageBrowserViewController>(services.controller, *m_imageBrowser,
                                                                       services.defaults, services.threads))
{
    m_imageListContainer->addWidget(m_imageBrowser);
    m_imageListContainer->addWidget(m_imageListTable);
    m_actions.fillImageMenu(m_imageMenu);
    m_imageListTable->setContextMenu(m_imageMenu);
    m_imageBrowser->setContextMenu(m_imageMenu);
    m_imageBrowser->viewport()->installEventFilter(this);

    // Only in the photo views; elsewhere the key removes other things.
    m_actions.useShortcutIn(*m_imageListContainer, ActionId::RemoveSelected);

    m_zoomRow = makeZoomRow();
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(makeButtonRow());
    layout->addWidget(m_imageListContainer, 1);
    layout->addWidget(m_zoomRow);
    connectSet(services.controller);
    connectBrowser();
    showMode(m_set.imageListIsInBrowserMode());
}

ImageListPane::~ImageListPane() = default;

QWidget *ImageListPane::makeButtonRow()
{
    auto *const row = new QWidget;
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(8, 4, 8, 6);
    layout->setSpacing(2);
    const auto add = [&](std::initializer_list<ActionId> ids) {
        for (const ActionId id : ids)
            layout->addWidget(m_actions.makeButton(id, row));
        layout->addSpacing(kGroupGap);
    };
    add({ActionId::AddImages, ActionId::AddFolder, ActionId::RemoveSelected});
    add({ActionId::TurnLeft, ActionId::TurnRight, ActionId::Turn180, ActionId::FlipHorizontal,
         ActionId::FlipVertical});
    add({ActionId::ToggleMetadata});
    layout->addStretch(1);

    m_searchField->setObjectName(QStringLiteral("searchField"));
    m_searchField->setPlaceholderText(tr("Search names"));
    m_searchField->setAccessibleName(tr("Search"));
    m_searchField->setToolTip(tr("Show only photos whose names contain this text"));
    m_searchField->setClearButtonEnabled(true);
    m_searchField->addAction(m_actions.action(ActionId::Find)->icon(), QLineEdit::LeadingPosition);
    m_searchField->setMinimumWidth(90);
    m_searchField->setMaximumWidth(220);
    m_searchField->setAcceptDrops(false); // the window accepts files; the field would insert their addresses
    m_searchField->installEventFilter(this);
    layout->addWidget(m_searchField, 2);
    layout->addSpacing(kGroupGap);

    m_imageListModeButton = m_actions.makeButton(ActionId::SwitchBatchMode, row);
    m_imageListModeButton->setObjectName(QStringLiteral("imageListModeButton"));
    m_imageListModeButton->setCheckable(true);
    layout->addWidget(m_imageListModeButton);
    return row;
}

QWidget *ImageListPane::makeZoomRow()
{
    m_browserZoomSlider->setObjectName(QStringLiteral("browserZoomSlider"));

    auto *const row = new QWidget;
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(8, 1, 8, 1);
    layout->setSpacing(4);
    layout->addStretch();
    layout->addWidget(m_actions.makeButton(ActionId::BrowserZoomOut, row));
    layout->addWidget(m_browserZoomSlider);
    layout->addWidget(m_actions.makeButton(ActionId::BrowserZoomIn, row));
    return row;
}

void ImageListPane::connectSet(AppController &controller)
{
    connect(m_searchField, &QLineEdit::textChanged, &m_set, [this](const QString &text) {
        if (text != m_set.filterText())
            m_set.filterImages(text);
    });
    connect(&m_set, &ImageSet::filterTextChanged, m_searchField, [this] {
        if (m_searchField->text() != m_set.filterText()) // else the field would lose its own undo
            m_searchField->setText(m_set.filterText());
    });
    connect(&m_set, &ImageSet::imageListModeChanged, this, &ImageListPane::showMode);
    connect(m_imageListTable, &ImageListView::filesDropped, &controller, &AppController::addFiles);
    connect(m_imageListTable, &ImageListView::deletePressed, this,
            [this] { m_actions.run(ActionId::RemoveSelected); });
}

void ImageListPane::connectBrowser()
{
    ImageBrowserViewController &browser = *m_browserController;
    m_actions.setHandler(ActionId::BrowserZoomIn,
                         [&browser] { browser.zoomBrowser(ImageBrowserViewController::Zoom::In); });
    m_actions.setHandler(ActionId::BrowserZoomOut,
                         [&browser] { browser.zoomBrowser(ImageBrowserViewController::Zoom::Out); });
    m_actions.setHandler(ActionId::CopyImages, [&browser] { browser.copy(); });
    m_actions.setHandler(ActionId::ToggleFilenames, [this] {
        m_browserController->setShowBrowserFilenames(!m_imageBrowser->showFilenames());
    });
    connect(m_browserZoomSlider, &ZoomSlider::zoomFactorChosen, &browser,
            &ImageBrowserViewController::setBrowserZoomFactor);
    connect(&browser, &ImageBrowserViewController::browserZoomFactorChanged, m_browserZoomSlider,
            &ZoomSlider::setZoomFactor);
    m_browserZoomSlider->setZoomFactor(double(m_imageBrowser->zoomFactor()));
    const auto showNames = [this](bool shows) {
        m_actions.setText(ActionId::ToggleFilenames,
                          shows ? tr("Hide File&names in Browser") : tr("Show File&names in Browser"),
                          commandToolTip(commandRow(ActionId::ToggleFilenames)));
    };
    connect(&browser, &ImageBrowserViewController::showBrowserFilenamesChanged, this, showNames);
    showNames(m_imageBrowser->showFilenames());

    QAction *const marks = m_actions.action(ActionId::ToggleThumbnailWatermarks);
    marks->setCheckable(true);
    marks->setChecked(browser.showsWatermarks());
    m_actions.setHandler(ActionId::ToggleThumbnailWatermarks,
                         [&browser] { browser.setShowsWatermarks(!browser.showsWatermarks()); });
    connect(&browser, &ImageBrowserViewController::showsWatermarksChanged, marks, &QAction::setChecked);
}

void ImageListPane::showMode(bool isBrowser)
{
    const bool hadFocus = m_imageListContainer->isAncestorOf(focusWidget());
    m_imageListContainer->setCurrentWidget(isBrowser ? static_cast<QWidget *>(m_imageBrowser)
                                                     : m_imageListTable);
    m_zoomRow->setVisible(isBrowser);
    if (isBrowser)
        m_browserController->followZoomAndNames();
    if (hadFocus || !focusWidget())
        shownView()->setFocus();
    m_imageListModeButton->setChecked(!isBrowser);
    if (isBrowser)
        m_actions.setText(ActionId::SwitchBatchMode, tr("Switch to Large &Batch Mode"),
                          tr("Switch to the Large Batch mode. Recommended if you work with many images."));
    else
        m_actions.setText(ActionId::SwitchBatchMode, tr("Switch to Small &Batch Mode"),
                          tr("Switch to the Small Batch mode. Recommended if you work with fewer images."));
}

/// Keys that move the focus from the search field to the photos; Escape also clears the search.
bool ImageListPane::endSearch(int key)
{
    switch (key) {
    case Qt::Key_Escape:
        m_searchField->clear();
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Down:
        break;
    default:
        return false;
    }
    shownView()->setFocus(Qt::OtherFocusReason);
    return true;
}

/// Keeps a visible focus image visible when the grid is resized.
bool ImageListPane::eventFilter(QObject *object, QEvent *event)
{
    if (object == m_searchField)
        return event->type() == QEvent::KeyPress && endSearch(static_cast<QKeyEvent *>(event)->key());
    if (object == m_imageBrowser->viewport() && event->type() == QEvent::Resize) {
        const QRectF seen(QPointF(0, m_imageBrowser->visibleRect().y()),
                          QSizeF(static_cast<QResizeEvent *>(event)->oldSize()));
        const auto cell =
            m_imageBrowser->cellForIndex(m_imageBrowser->focusImageIndex()); // before the new layout
        if (cell && seen.intersects(*cell))
            QTimer::singleShot(0, m_imageBrowser, &ImageBrowserView::scrollFocusImageToVisible);
    }
    return QWidget::eventFilter(object, event);
}

QWidget *ImageListPane::shownView() const
{
    return m_imageListContainer->currentWidget();
}

void ImageListPane::startSearch()
{
    m_searchField->setFocus(Qt::ShortcutFocusReason);
    m_searchField->selectAll();
}

} // namespace plexa

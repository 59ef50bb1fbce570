// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/browser/imagelistpane.h"

#include "app/appcontroller.h"
#include "ui/browser/imagebrowserview.h"
#include "ui/browser/imagebrowserviewcontroller.h"
#include "ui/browser/imagelistmodel.h"
#include "ui/browser/imagelistview.h"
#include "ui/widgets/choicebuttons.h"
#include "ui/widgets/commandactions.h"
#include "ui/widgets/dropframe.h"
#include "ui/widgets/look.h"
#include "ui/widgets/messagepage.h"
#include "ui/widgets/zoomslider.h"

#include <QAction>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QResizeEvent>
#include <QStackedWidget>
#include <QTimer>
#include <QToolButton>

namespace plexa
{

ImageListPane::ImageListPane(const Services &services, QWidget *parent)
    : QWidget(parent)
    , m_set(services.controller.imageSet())
    , m_status(services.controller.statusManager())
    , m_actions(services.actions)
    , m_searchField(new QLineEdit)
    , m_imageListContainer(new QStackedWidget)
    , m_imageBrowser(new ImageBrowserView)
    , m_imageListTable(new ImageListView(m_set, services.controller.photoServices().fonts, services.threads))
    , m_browserZoomSlider(new ZoomSlider(tr("Size of the thumbnails")))
    , m_imageMenu(new QMenu(this))
    , m_browserController(std::make_unique<ImageBrowserViewController>(services.controller, *m_imageBrowser,
                                                                       services.defaults, services.threads))
{
    m_imageListContainer->addWidget(m_imageBrowser);
    m_imageListContainer->addWidget(m_imageListTable);
    m_noMatchPage = makeNoMatchPage();
    m_imageListContainer->addWidget(m_noMatchPage);
    m_actions.fillImageMenu(m_imageMenu);
    m_imageListTable->setContextMenu(m_imageMenu);
    m_imageBrowser->setContextMenu(m_imageMenu);
    m_imageBrowser->viewport()->installEventFilter(this);
    new DropFrame(m_imageBrowser->viewport(), m_imageBrowser);
    new DropFrame(m_imageListTable->viewport(), m_imageListTable);

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
    layout->setContentsMargins(look::kGap, look::kSmallGap, look::kGap, look::kSmallGap);
    layout->setSpacing(look::kSmallGap);
    const auto add = [&](std::initializer_list<ActionId> ids) {
        for (const ActionId id : ids)
            layout->addWidget(m_actions.makeButton(id, row));
        layout->addSpacing(look::kGap);
    };
    add({ActionId::AddImages, ActionId::AddFolder, ActionId::RemoveSelected});
    add({ActionId::TurnLeft, ActionId::TurnRight, ActionId::Turn180, ActionId::FlipHorizontal,
         ActionId::FlipVertical});
    add({ActionId::ToggleMetadata});
    layout->addStretch(1);

    prepareSearchField();
    layout->addWidget(m_searchField, 2);
    layout->addSpacing(look::kGap);
    m_modeSwitch = makeModeSwitch();
    layout->addWidget(m_modeSwitch);
    return row;
}

void ImageListPane::prepareSearchField()
{
    m_searchField->setObjectName(QStringLiteral("searchField"));
    m_searchField->setPlaceholderText(tr("Search"));
    m_searchField->setAccessibleName(tr("Search"));
    m_searchField->setToolTip(tr("Show only photos whose names contain this text"));
    m_searchField->setClearButtonEnabled(true);
    // The name of the button of the field that clears it.
    for (QAction *const clear : m_searchField->findChildren<QAction *>())
        clear->setText(tr("Clear the search"));
    QAction *const find =
        m_searchField->addAction(m_actions.action(ActionId::Find)->icon(), QLineEdit::LeadingPosition);
    find->setText(tr("Search"));
    connect(find, &QAction::triggered, this, &ImageListPane::startSearch);
    // The word between the two icons.
    m_searchField->setMinimumWidth(
        m_searchField->fontMetrics().horizontalAdvance(m_searchField->placeholderText()) +
        18 * look::kSmallGap);
    m_searchField->setMaximumWidth(56 * look::kSmallGap);
    m_searchField->setAcceptDrops(false); // the window accepts files; the field would insert their addresses
    m_searchField->installEventFilter(this);
}

ChoiceButtons *ImageListPane::makeModeSwitch()
{
    auto *const modes = new ChoiceButtons(tr("View of the photos"), ChoiceButtons::Look::Texts, 0, this);
    modes->setObjectName(QStringLiteral("imageListModeSwitch"));
    const auto add = [&](const QString &text, const char *icon, const char *name, bool isBrowser) {
        QAbstractButton *const part =
            modes->addChoice(text, QIcon(QStringLiteral(":/icons/%1.svg").arg(QLatin1String(icon))));
        part->setObjectName(QLatin1String(name));
        connect(part, &QAbstractButton::clicked, &m_set, [this, isBrowser] {
            if (m_set.imageListIsInBrowserMode() != isBrowser)
                m_set.setImageListModeToBrowser(isBrowser); // sends a signal even if it is refused
        });
        return part;
    };
    m_gridPart = add(tr("Grid"), "grid", "smallBatchButton", true);
    m_listPart = add(tr("List"), "list", "imageListModeButton", false);
    return modes;
}

/// In place of the photos if the search finds none.
MessagePage *ImageListPane::makeNoMatchPage()
{
    auto *const page = new MessagePage(QStringLiteral("search"));
    page->setObjectName(QStringLiteral("noMatchPage"));
    auto *const showAll = new QPushButton(tr("Show All Photos"));
    showAll->setObjectName(QStringLiteral("showAllPhotosButton"));
    showAll->setToolTip(tr("Clear the search"));
    connect(showAll, &QPushButton::clicked, this, [this] {
        m_searchField->clear();
        shownView()->setFocus();
    });
    page->addButton(showAll);
    return page;
}

QWidget *ImageListPane::makeZoomRow()
{
    m_browserZoomSlider->setObjectName(QStringLiteral("browserZoomSlider"));

    auto *const row = new QWidget;
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(look::kGap, look::kSmallGap, look::kGap, look::kSmallGap);
    layout->setSpacing(look::kSmallGap);
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
    for (const auto changed : {&ImageSet::imagesInserted, &ImageSet::imagesRemoved, &ImageSet::listReset})
        connect(&m_set, changed, this, &ImageListPane::showView);
    connect(&controller, &AppController::imageOutdated, m_imageListTable,
            [this](const std::shared_ptr<ImageObject> &image) {
                m_imageListTable->imageListModel().outdatePicture(image.get());
            });
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
    m_actions.setHandler(ActionId::CopyImages, [this] { copyImages(); });
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

/// Nothing in sight changes: other programs ask for the copies when they are pasted.
void ImageListPane::copyImages()
{
    m_browserController->copy();
    const qsizetype count = m_set.selection().selectedIndexes().size();
    m_status.notify(count == 1 ? tr("One photo is ready to be pasted")
                               : tr("%1 photos are ready to be pasted").arg(count));
}

void ImageListPane::showMode(bool isBrowser)
{
    showView();
    m_zoomRow->setVisible(isBrowser);
    if (isBrowser)
        m_browserController->followZoomAndNames();
    if (isVisible() && !focusWidget())
        shownView()->setFocus();
    m_modeSwitch->setIndex(isBrowser ? 0 : 1);
    const QString other =
        isBrowser ? tr("Switch to the Large Batch mode. Recommended if you work with many images.")
                  : tr("Switch to the Small Batch mode. Recommended if you work with fewer images.");
    m_actions.setText(ActionId::SwitchBatchMode,
                      isBrowser ? tr("Switch to Large &Batch Mode") : tr("Switch to Small &Batch Mode"),
                      other);
    const QString withShortcut = m_actions.action(ActionId::SwitchBatchMode)->toolTip();
    m_gridPart->setToolTip(isBrowser ? tr("Small Batch mode: the photos as thumbnails") : withShortcut);
    m_listPart->setToolTip(isBrowser ? withShortcut : tr("Large Batch mode: the photos as a list"));
}

/// The view of the mode, or a page if the search finds no photo.
void ImageListPane::showView()
{
    const bool hadFocus = m_imageListContainer->isAncestorOf(focusWidget());
    QWidget *view = m_imageListTable;
    if (m_set.imagesFiltered()->empty() && !m_set.images()->empty()) {
        m_noMatchPage->setTitle(tr("No photo has “%1” in its name").arg(m_set.filterText()));
        view = m_noMatchPage;
    } else if (m_set.imageListIsInBrowserMode()) {
        view = m_imageBrowser;
    }
    m_imageListContainer->setCurrentWidget(view);
    if (hadFocus)
        view->setFocus();
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
        m_browserController->gridDidResize();
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

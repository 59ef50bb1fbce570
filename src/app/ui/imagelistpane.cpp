// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/ui/imagelistpane.h"

#include "app/imageset.h"
#include "app/ui/commandactions.h"
#include "app/ui/emptyframe.h"
#include "app/ui/imagelistview.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QMenu>
#include <QStackedWidget>
#include <QToolButton>

namespace plexa
{

namespace
{

constexpr int kGroupGap = 10;

} // namespace

ImageListPane::ImageListPane(ImageSet &set, CommandActions &actions, QWidget *parent)
    : QWidget(parent)
    , m_set(set)
    , m_actions(actions)
    , m_searchField(new QLineEdit)
    , m_imageListContainer(new QStackedWidget)
    , m_imageBrowserPlace(new EmptyFrame(QPalette::Mid))
    , m_imageListTable(new ImageListView(set))
    , m_imageMenu(new QMenu(this))
{
    m_imageBrowserPlace->setObjectName(QStringLiteral("imageBrowser"));
    m_imageBrowserPlace->setHint(tr("Drag & drop images here"));
    m_imageListContainer->addWidget(m_imageBrowserPlace);
    m_imageListContainer->addWidget(m_imageListTable);
    actions.fillImageMenu(m_imageMenu);
    m_imageListTable->setContextMenu(m_imageMenu);
    m_imageBrowserPlace->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_imageBrowserPlace, &QWidget::customContextMenuRequested, this,
            [this](QPoint at) { m_imageMenu->popup(m_imageBrowserPlace->mapToGlobal(at)); });

    // The key belongs to the photos: elsewhere it removes other things.
    QAction *const remove = actions.action(ActionId::RemoveSelected);
    remove->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    m_imageListContainer->addAction(remove);

    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(makeButtonRow());
    layout->addWidget(m_imageListContainer, 1);
    connectSet();
}

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
    layout->addWidget(m_searchField, 2);
    layout->addSpacing(kGroupGap);

    m_imageListModeButton = m_actions.makeButton(ActionId::SwitchBatchMode, row);
    m_imageListModeButton->setObjectName(QStringLiteral("imageListModeButton"));
    m_imageListModeButton->setCheckable(true);
    layout->addWidget(m_imageListModeButton);
    return row;
}

void ImageListPane::connectSet()
{
    connect(m_searchField, &QLineEdit::textChanged, &m_set, [this](const QString &text) {
        if (text != m_set.filterText())
            m_set.filterImages(text);
    });
    connect(&m_set, &ImageSet::filterTextChanged, m_searchField,
            [this] { m_searchField->setText(m_set.filterText()); });
    connect(&m_set, &ImageSet::imageListModeChanged, this, &ImageListPane::showMode);
    connect(m_imageBrowserPlace, &EmptyFrame::filesDropped, &m_set, &ImageSet::scanImagesAtPaths);
    connect(m_imageListTable, &ImageListView::filesDropped, &m_set, &ImageSet::scanImagesAtPaths);
    connect(m_imageListTable, &ImageListView::deletePressed, this,
            [this] { m_actions.run(ActionId::RemoveSelected); });
    // The grid has no photos to show yet, but the place tells that there are some.
    const auto updateHint = [this] {
        m_imageBrowserPlace->setHint(m_set.imagesFiltered()->empty() ? tr("Drag & drop images here")
                                                                     : QString());
    };
    connect(&m_set, &ImageSet::imagesInserted, this, updateHint);
    connect(&m_set, &ImageSet::imagesRemoved, this, updateHint);
    connect(&m_set, &ImageSet::listReset, this, updateHint);
}

void ImageListPane::showMode(bool isBrowser)
{
    const bool hadFocus = m_imageListContainer->isAncestorOf(focusWidget());
    m_imageListContainer->setCurrentWidget(isBrowser ? static_cast<QWidget *>(m_imageBrowserPlace)
                                                     : m_imageListTable);
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

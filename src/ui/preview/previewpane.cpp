// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/preview/previewpane.h"

#include "app/appcontroller.h"
#include "ui/preview/imageviewcontroller.h"
#include "ui/preview/imageviewwithwatermarkcontrol.h"
#include "ui/widgets/busyindicator.h"
#include "ui/widgets/commandactions.h"
#include "ui/widgets/elidedlabel.h"
#include "ui/widgets/helpbutton.h"
#include "ui/widgets/look.h"
#include "ui/widgets/zoomslider.h"

#include <QFile>
#include <QHBoxLayout>
#include <QMenu>
#include <QToolButton>

namespace plexa
{
namespace
{

/// Its short text is for "What's This?".
QToolButton *makeHelpButton()
{
    auto *const button =
        new HelpButton(QStringLiteral("preview.html"), PreviewPane::tr("Help on the preview"),
                       PreviewPane::tr("Explain the preview"));
    button->setObjectName(QStringLiteral("imageViewHelpButton"));
    //: The name of a page in resources/help, which has another one for each language.
    QFile page(QStringLiteral(":/help/%1.html").arg(PreviewPane::tr("Help-ImageView")));
    if (page.open(QIODevice::ReadOnly))
        button->setWhatsThis(QString::fromUtf8(page.readAll()));
    return button;
}

/// The commands about positions chosen by hand, by their names.
QToolButton *makePositionButton(const CommandActions &actions)
{
    auto *const button = new QToolButton;
    button->setObjectName(QStringLiteral("positionButton"));
    button->setText(PreviewPane::tr("Position") + QStringLiteral(" ▾"));
    button->setStyleSheet(
        QStringLiteral("QToolButton::menu-indicator { image: none; }")); // its own is in a corner
    button->setIcon(QIcon(QStringLiteral(":/icons/position.svg")));
    button->setIconSize(QSize(look::kButtonIcon, look::kButtonIcon));
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setAutoRaise(true);
    button->setPopupMode(QToolButton::InstantPopup);
    button->setFocusPolicy(Qt::TabFocus);
    button->setAccessibleName(PreviewPane::tr("Position"));
    button->setToolTip(
        PreviewPane::tr("Copy, paste or reset the positions to which watermarks were dragged"));
    auto *const menu = new QMenu(button);
    menu->setToolTipsVisible(true);
    for (const ActionId id : {ActionId::CopyPosition, ActionId::CopyAllPositions, ActionId::PastePositions})
        menu->addAction(actions.action(id));
    menu->addSeparator();
    for (const ActionId id : {ActionId::ResetPosition, ActionId::ResetAllPositions})
        menu->addAction(actions.action(id));
    button->setMenu(menu);
    return button;
}

} // namespace

PreviewPane::PreviewPane(const Services &services, QWidget *parent)
    : QWidget(parent)
    , m_actions(services.actions)
    , m_imageView(new ImageViewWithWatermarkControl)
    , m_controller(new ImageViewController(services.controller, *m_imageView))
    , m_imageInfoLabel(new ElidedLabel(Qt::ElideMiddle))
    , m_messageLabel(new ElidedLabel)
    , m_spinningIndicator(new BusyIndicator)
    , m_zoomSlider(new ZoomSlider(tr("Zoom of the preview")))
{
    setObjectName(QStringLiteral("previewPane"));
    m_controller->setParent(this);
    m_imageView->setObjectName(QStringLiteral("imageView"));
    m_imageView->setAccessibleName(tr("Preview"));
    m_imageView->setAccessibleDescription(
        tr("The photo with its watermarks. Return selects the watermark, the arrow keys move it."));
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_imageView, 1);
    layout->addWidget(makeBar());
    connectZoom();
    connect(m_controller, &ImageViewController::infoChanged, this, &PreviewPane::showInfo);
    connect(m_imageView, &ImageView::unsupportedKey, this, &PreviewPane::keyForImageList);
    showInfo();
    showZoom();
}

PreviewPane::~PreviewPane()
{
    delete m_controller; // its thread ends before the view does
}

QWidget *PreviewPane::makeBar()
{
    m_imageInfoLabel->setObjectName(QStringLiteral("imageInfoLabel"));
    m_messageLabel->setObjectName(QStringLiteral("previewMessageLabel"));
    m_messageLabel->setForegroundRole(QPalette::WindowText);
    m_spinningIndicator->setObjectName(QStringLiteral("spinningIndicator"));
    m_zoomSlider->setObjectName(QStringLiteral("zoomSlider"));

    auto *const bar = new QWidget;
    auto *const row = new QHBoxLayout(bar);
    row->setContentsMargins(look::kGap, look::kSmallGap, look::kGap, look::kSmallGap);
    row->setSpacing(look::kSmallGap);
    row->addWidget(m_imageInfoLabel, 0);
    row->addWidget(makePositionButton(m_actions));
    row->addWidget(m_spinningIndicator);
    row->addWidget(m_messageLabel, 1);
    row->addWidget(m_actions.makeButton(ActionId::PreviewZoomOut, bar));
    row->addWidget(m_zoomSlider);
    row->addWidget(m_actions.makeButton(ActionId::PreviewZoomIn, bar));
    row->addSpacing(look::kGap);
    row->addWidget(m_actions.makeButton(ActionId::PreviewFit, bar));
    row->addWidget(m_actions.makeButton(ActionId::PreviewFullSize, bar));
    row->addWidget(makeHelpButton());
    return bar;
}

void PreviewPane::connectZoom()
{
    ImageViewController &controller = *m_controller;
    using Step = ImageViewController::ZoomStep;
    using Extreme = ImageViewController::ZoomExtreme;
    m_actions.setHandler(ActionId::PreviewZoomIn, [&controller] { controller.changeZoomByStep(Step::In); });
    m_actions.setHandler(ActionId::PreviewZoomOut, [&controller] { controller.changeZoomByStep(Step::Out); });
    m_actions.setHandler(ActionId::PreviewFit,
                         [&controller] { controller.changeZoomToExtreme(Extreme::Fit); });
    m_actions.setHandler(ActionId::PreviewFullSize,
                         [&controller] { controller.changeZoomToExtreme(Extreme::FullSize); });
    connect(m_zoomSlider, &ZoomSlider::zoomFactorChosen, m_controller, &ImageViewController::setZoomFactor);
    connect(m_controller, &ImageViewController::zoomControlsChanged, this, &PreviewPane::showZoom);
}

void PreviewPane::showZoom()
{
    m_zoomSlider->setZoomFactor(m_controller->zoomFactor());
    m_zoomSlider->setEnabled(m_controller->canZoom());
    QString toolTip = tr("Zoom of the preview, from the whole photo to its full size");
    if (!m_controller->canZoom())
        toolTip += u'\n' + reasonFor(Need::RoomToZoomInPreview);
    m_zoomSlider->setToolTip(toolTip);
    m_actions.scheduleUpdate();
}

void PreviewPane::showInfo()
{
    const QStringList messages = m_controller->messages();
    m_imageInfoLabel->setText(m_controller->info());
    m_messageLabel->setText(messages.isEmpty() ? m_controller->hint()
                                               : QStringLiteral("⚠ ") + messages.join(u' '));
    m_messageLabel->setToolTip(messages.join(u'\n'));
    m_spinningIndicator->setBusy(m_controller->isBusy());
}

} // namespace plexa

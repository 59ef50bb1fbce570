// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/statuslineview.h"

#include "app/appcontroller.h"
#include "ui/widgets/elidedlabel.h"
#include "ui/widgets/look.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QProgressBar>
#include <QToolButton>

namespace plexa
{

namespace
{

constexpr int kSteps = 1000; // of the bar, which counts in whole numbers
constexpr std::chrono::seconds kNoticeTime(8);
constexpr QSize kProgressSize(160, 12);

} // namespace

StatusLineView::StatusLineView(AppController &controller, QWidget *parent)
    : QWidget(parent)
    , m_controller(controller)
    , m_text(new ElidedLabel)
    , m_hint(new ElidedLabel)
    , m_progress(new QProgressBar)
    , m_stop(new QToolButton)
{
    m_text->setObjectName(QStringLiteral("statusText"));
    m_hint->setObjectName(QStringLiteral("statusHint"));
    m_progress->setObjectName(QStringLiteral("progressIndicator"));
    m_progress->setAccessibleName(tr("Progress"));
    m_progress->setTextVisible(false);
    m_progress->setFixedSize(kProgressSize);
    m_stop->setObjectName(QStringLiteral("stopAllOperationsButton"));
    m_stop->setIcon(QIcon(QStringLiteral(":/icons/stop.svg")));
    m_stop->setIconSize(QSize(look::kButtonIcon, look::kButtonIcon));
    m_stop->setAutoRaise(true);
    m_stop->setToolTip(tr("Stop what is running"));
    m_stop->setAccessibleName(tr("Stop"));

    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(look::kLargeGap);
    layout->addWidget(m_text);
    layout->addWidget(m_progress);
    layout->addWidget(m_stop);
    layout->addWidget(m_hint);
    layout->addStretch();
    // Nothing moves when the button is shown or hidden.
    setMinimumHeight(m_stop->sizeHint().height());

    connect(m_stop, &QToolButton::clicked, &controller, &AppController::stopAllOperations);
    connect(&controller.statusManager(), &StatusManager::lineChanged, this, &StatusLineView::showLine);
    connectNotices();
    showLine();
}

void StatusLineView::connectNotices()
{
    m_noticeTimer.setObjectName(QStringLiteral("noticeTimer"));
    m_noticeTimer.setSingleShot(true);
    m_noticeTimer.setInterval(kNoticeTime);
    connect(&m_noticeTimer, &QTimer::timeout, this, [this] { notice({}); });
    connect(&m_controller.statusManager(), &StatusManager::noticed, this, &StatusLineView::notice);
    connect(&m_controller, &AppController::commandStateChanged, this, &StatusLineView::showHint);
    connect(&m_controller, &AppController::previewOutdated, this, &StatusLineView::showHint);
    const ImageGathering &gathering = m_controller.gathering();
    // In Small Batch mode an import follows the scan.
    const auto announceEnd = [this, &gathering] {
        if (!gathering.isScanning() && !gathering.isImportingImages() && std::exchange(m_hasAdded, false))
            notice(tr("Import finished"));
    };
    connect(&m_controller.imageSet(), &ImageSet::imagesInserted, this, [this] { m_hasAdded = true; });
    connect(&m_controller.imageSet(), &ImageSet::imagesRemoved, this, [this] {
        if (m_controller.imageSet().images()->empty())
            notice({}); // of photos that are no longer there
    });
    connect(&gathering, &ImageGathering::scanFinished, this, announceEnd);
    connect(&gathering, &ImageGathering::importFinished, this, announceEnd);
}

void StatusLineView::showLine()
{
    const StatusLine &line = m_controller.statusManager().line();
    m_text->setText(line.text);
    m_progress->setVisible(line.bar != StatusLine::Bar::Hidden);
    m_progress->setRange(0, line.bar == StatusLine::Bar::Busy ? 0 : kSteps);
    m_progress->setValue(qRound(line.fraction * kSteps));
    m_stop->setEnabled(line.canBeStopped);
    m_stop->setVisible(line.canBeStopped);
    showHint();
}

/// What the user has to do before photos can be saved; empty: nothing.
QString StatusLineView::missing() const
{
    if (m_controller.statusManager().line().canBeStopped)
        return {};
    if (m_controller.imageSet().images()->empty())
        return tr("Add photos to begin");
    if (m_controller.appliedPresets().effectivePresets().empty())
        return tr("Apply a preset to save");
    if (!m_controller.appliedPresets().isInSingleMode())
        return {};
    // Saving is possible, but nothing would be drawn.
    const WPresetValues &values = m_controller.appliedPresets().quickWPreset()->values();
    if (values.type == QLatin1StringView("Image"))
        return values.image.isNull() ? tr("Choose a picture for the watermark") : QString();
    return values.textTokens.join(QString()).trimmed().isEmpty() ? tr("Enter a text for the watermark")
                                                                 : QString();
}

void StatusLineView::showHint()
{
    const QString text = m_notice.isEmpty() ? missing() : m_notice;
    if (text != m_hint->text())
        m_hint->setText(text);
}

void StatusLineView::notice(const QString &text)
{
    m_notice = text;
    showHint();
    if (text.isEmpty())
        return;
    m_noticeTimer.start();
    QAccessibleEvent event(m_hint, QAccessible::Alert);
    QAccessible::updateAccessibility(&event);
}

} // namespace plexa

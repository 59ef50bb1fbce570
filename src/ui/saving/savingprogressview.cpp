// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/saving/savingprogressview.h"

#include "app/batchsave.h"
#include "ui/widgets/elidedlabel.h"
#include "ui/widgets/look.h"

#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace plexa
{
namespace
{

constexpr int kPictureSide = 180;
constexpr int kPlaceholderSide = 48;
constexpr int kWidth = 440;
constexpr double kTitleScale = 1.3; // of the font's size
constexpr std::chrono::seconds kTick(1);
constexpr std::chrono::milliseconds kBetweenUpdates(50);
constexpr qint64 kMinute = 60;

} // namespace

SavingProgressView::SavingProgressView(BatchSave &save, QWidget *parent)
    : QWidget(parent)
    , m_save(save)
    , m_picture(new QLabel)
    , m_message(new QLabel)
    , m_name(new ElidedLabel(Qt::ElideMiddle))
    , m_bar(new QProgressBar)
    , m_remaining(new QLabel)
    , m_stop(new QPushButton(tr("Stop")))
{
    setObjectName(QStringLiteral("savingProgressView"));
    setAccessibleName(tr("Photos are being saved"));
    setFocusPolicy(Qt::StrongFocus); // the Return key that started the run must not stop it
    m_picture->setFixedSize(kPictureSide, kPictureSide);
    m_picture->setAlignment(Qt::AlignCenter);
    m_picture->setObjectName(QStringLiteral("savingPicture"));
    m_picture->setAccessibleName(tr("The photo that is being saved"));
    QFont font = m_message->font();
    font.setPointSizeF(font.pointSizeF() * kTitleScale);
    m_message->setFont(font);
    m_message->setObjectName(QStringLiteral("savingMessage"));
    m_name->setObjectName(QStringLiteral("savingName"));
    QPalette palette = m_remaining->palette();
    palette.setColor(QPalette::WindowText, look::kSecondaryText);
    m_remaining->setPalette(palette);
    m_remaining->setObjectName(QStringLiteral("savingRemainingTime"));

    auto *const content = new QWidget;
    content->setFixedWidth(kWidth);
    auto *const column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(look::kLargeGap);
    column->addWidget(m_picture, 0, Qt::AlignHCenter);
    column->addSpacing(look::kLargeGap);
    column->addWidget(m_message);
    column->addWidget(m_name);
    column->addWidget(makeBarRow());
    column->addWidget(m_remaining);
    auto *const page = new QVBoxLayout(this);
    page->setContentsMargins(look::kPageGap, look::kPageGap, look::kPageGap, look::kPageGap);
    page->addWidget(content, 0, Qt::AlignCenter);

    m_ticks.setInterval(kTick);
    connect(&m_ticks, &QTimer::timeout, this, &SavingProgressView::showRemainingTime);
    connect(&save, &BatchSave::started, this, &SavingProgressView::begin);
    m_update.setInterval(kBetweenUpdates);
    m_update.setSingleShot(true);
    connect(&m_update, &QTimer::timeout, this, &SavingProgressView::showProgress);
    connect(&save, &BatchSave::progressChanged, this, [this] {
        if (!m_update.isActive())
            m_update.start();
    });
    connect(&save, &BatchSave::finished, &m_ticks, &QTimer::stop);
}

QWidget *SavingProgressView::makeBarRow()
{
    m_bar->setObjectName(QStringLiteral("savingProgressBar"));
    m_bar->setAccessibleName(tr("Progress"));
    m_bar->setTextVisible(false);
    m_stop->setObjectName(QStringLiteral("stopSavingButton"));
    m_stop->setToolTip(tr("Complete the copies under way and save no further ones (Esc)"));
    connect(m_stop, &QAbstractButton::clicked, &m_save, &BatchSave::terminateOperation);
    auto *const row = new QWidget;
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(look::kLargeGap);
    layout->addWidget(m_bar, 1);
    layout->addWidget(m_stop);
    return row;
}

void SavingProgressView::begin()
{
    m_remainingTime = {};
    m_remainingTime.add(0, 0);
    m_clock.start();
    m_ticks.start();
    m_stop->setEnabled(true);
    m_shownPicture = 0;
    showProgress();
}

void SavingProgressView::showProgress()
{
    if (!m_save.isSavingInProgress())
        return;
    const SavingProgress progress = m_save.progress();
    // The name of the file follows the text; it may be longer than the line.
    const qsizetype end = progress.message.indexOf(u'\n');
    m_message->setText(m_save.isTerminating() ? tr("Completing the copies under way…")
                       : end < 0              ? progress.message
                                              : progress.message.left(end));
    m_name->setText(end < 0 ? QString() : progress.message.mid(end + 1));
    // One copy has no steps.
    m_bar->setRange(0, progress.maximum > 1 ? static_cast<int>(progress.maximum) : 0);
    m_bar->setValue(static_cast<int>(progress.value));
    m_stop->setEnabled(!m_save.isTerminating());
    m_remainingTime.add(m_clock.elapsed(), progress.finished);
    showPicture(progress.picture);
    showRemainingTime();
}

void SavingProgressView::showPicture(const QImage &picture)
{
    if (m_shownPicture == (picture.isNull() ? -1 : picture.cacheKey()))
        return;
    m_shownPicture = picture.isNull() ? -1 : picture.cacheKey();
    if (picture.isNull()) // the photo is not loaded
        m_picture->setPixmap(
            QIcon(QStringLiteral(":/icons/save-all.svg"))
                .pixmap(QSize(kPlaceholderSide, kPlaceholderSide), devicePixelRatioF(), QIcon::Disabled));
    else
        m_picture->setPixmap(QPixmap::fromImage(picture));
}

void SavingProgressView::showRemainingTime()
{
    QString text;
    const auto seconds = m_remainingTime.seconds(m_clock.elapsed(), m_save.progress().maximum);
    if (seconds && !m_save.isTerminating()) {
        if (*seconds < 10)
            text = tr("A few seconds left");
        else if (*seconds < kMinute)
            text = tr("Less than a minute left");
        else if (const qint64 minutes = (*seconds + kMinute / 2) / kMinute; minutes == 1)
            text = tr("About a minute left");
        else
            text = tr("About %n minutes left", nullptr, static_cast<int>(minutes));
    }
    m_remaining->setText(text);
}

void SavingProgressView::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        m_save.terminateOperation();
    else
        QWidget::keyPressEvent(event);
}

} // namespace plexa

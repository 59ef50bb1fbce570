// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/saving/remainingtime.h"

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>

class QLabel;
class QProgressBar;
class QPushButton;

namespace plexa
{

class BatchSave;
class ElidedLabel;

/// The page in place of the window's content while photos are saved: the photo, the copy, a bar, the
/// remaining time, and a button that stops.
class SavingProgressView final : public QWidget
{
    Q_OBJECT

public:
    /// @param save  outlives the view
    explicit SavingProgressView(BatchSave &save, QWidget *parent = nullptr);

protected:
    /// Escape stops.
    void keyPressEvent(QKeyEvent *event) override;

private:
    QWidget *makeBarRow();
    void begin();
    void showProgress();
    void showPicture(const QImage &picture);
    void showRemainingTime();

    BatchSave &m_save;
    QLabel *const m_picture;
    QLabel *const m_message;
    ElidedLabel *const m_name;
    QProgressBar *const m_bar;
    QLabel *const m_remaining;
    QPushButton *const m_stop;
    RemainingTime m_remainingTime;
    QElapsedTimer m_clock;
    QTimer m_ticks;
    QTimer m_update;           // once for many changes
    qint64 m_shownPicture = 0; // its cache key
};

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QWidget>

class QProgressBar;
class QToolButton;

namespace plexa
{

class ElidedLabel;
class StatusManager;

/// The status line: a text, and while something runs a progress bar and a stop button.
class StatusLineView final : public QWidget
{
    Q_OBJECT

public:
    /// @param status  outlives the view
    explicit StatusLineView(StatusManager &status, QWidget *parent = nullptr);

Q_SIGNALS:
    void stopPressed();

private:
    void showLine();

    StatusManager &m_status;
    ElidedLabel *const m_statusText;
    QProgressBar *const m_progressIndicator;
    QToolButton *const m_stopButton;
};

} // namespace plexa

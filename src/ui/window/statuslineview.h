// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QTimer>
#include <QWidget>

class QProgressBar;
class QToolButton;

namespace plexa
{

class AppController;
class ElidedLabel;

/// The status line: its text, beside it what the user has to do first or the result of the last command, a
/// progress bar, and the stop button.
class StatusLineView final : public QWidget
{
    Q_OBJECT

public:
    /// @param controller  outlives the view
    explicit StatusLineView(AppController &controller, QWidget *parent = nullptr);

private:
    void connectNotices();
    void showLine();
    void showHint();
    void notice(const QString &text);
    QString missing() const;

    AppController &m_controller;
    ElidedLabel *const m_text;
    ElidedLabel *const m_hint;
    QProgressBar *const m_progress;
    QToolButton *const m_stop;
    QString m_notice; // in place of the hint
    QTimer m_noticeTimer{this};
    bool m_hasAdded = false; // photos, since the end of an import was announced
};

} // namespace plexa

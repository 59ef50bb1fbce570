// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QWidget>

class QAbstractButton;
class QHBoxLayout;
class QLabel;

namespace plexa
{

/// A page in place of a view that has nothing to show: an icon, a title, an explanation, and buttons.
class MessagePage final : public QWidget
{
    Q_OBJECT

public:
    /// @param icon  file of the icons' folder without its suffix
    explicit MessagePage(const QString &icon, QWidget *parent = nullptr);

    void setTitle(const QString &title);
    void setExplanation(const QString &explanation);
    /// The page owns the button. The first one receives the focus of the page.
    void addButton(QAbstractButton *button);

    /// Draws a dashed frame: files may be dropped here.
    void setIsDropTarget(bool isTarget);
    /// Files are over the window: the frame has the accent color.
    void setIsHovered(bool isHovered);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QLabel *const m_title;
    QLabel *const m_explanation;
    QHBoxLayout *const m_buttons;
    bool m_isDropTarget = false;
    bool m_isHovered = false;
};

} // namespace plexa

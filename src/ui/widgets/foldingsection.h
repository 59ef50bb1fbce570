// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QWidget>

class QToolButton;

namespace plexa
{

class UserDefaults;

/// A titled part of a panel that folds to its title, and remembers it. Main thread.
class FoldingSection final : public QWidget
{
    Q_OBJECT

public:
    /// @param key       the setting that keeps whether the section is folded
    /// @param defaults  outlives the section
    FoldingSection(const QString &title, const QString &key, QWidget *content, UserDefaults &defaults,
                   QWidget *parent = nullptr);

    bool isFolded() const { return m_content->isHidden(); }
    void setFolded(bool isFolded);

private:
    QToolButton *const m_header;
    QWidget *const m_content;
};

} // namespace plexa

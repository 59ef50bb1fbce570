// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QWidget>

class QHBoxLayout;
class QToolButton;

namespace plexa
{

class UserDefaults;

/// A titled part of a panel that folds to its title, and remembers it for all sections of its setting. Main
/// thread.
class FoldingSection : public QWidget
{
    Q_OBJECT

public:
    /// The setting that keeps whether the section is folded, and what holds before the user changes it.
    struct Folded {
        QString key;
        bool isFoldedAtFirst = false;
    };

    /// @param defaults  outlives the section
    FoldingSection(const QString &title, const Folded &folded, QWidget *content, UserDefaults &defaults,
                   QWidget *parent = nullptr);

    /// A control beside the title, shown while the section is not folded.
    void setHeaderWidget(QWidget *widget);

    bool isFolded() const { return m_content->isHidden(); }
    void setFolded(bool isFolded);

Q_SIGNALS:
    /// The user has folded or unfolded it.
    void foldedByUser(bool isFolded);

protected:
    void showEvent(QShowEvent *event) override;

private:
    const QString m_key;
    UserDefaults &m_defaults;
    QToolButton *const m_header;
    QHBoxLayout *const m_headerRow;
    QWidget *m_headerWidget = nullptr;
    QWidget *const m_content;
};

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QColor>
#include <QList>
#include <QPointer>
#include <QToolButton>

class QColorDialog;

namespace plexa
{

class UserDefaults;

/// A button that shows a color and opens a dialog to choose another, with a menu of those chosen last. The
/// color changes while the user moves in the dialog; Cancel takes that back. Main thread.
class ColorWell final : public QToolButton
{
    Q_OBJECT

public:
    enum class Alpha { Chosen, None };

    /// @param purpose   tool tip, accessible name, and title of the dialog
    /// @param defaults  keeps the colors chosen last, of all wells; outlives the well
    ColorWell(const QString &purpose, Alpha alpha, UserDefaults &defaults, QWidget *parent = nullptr);

    QColor color() const { return m_color; }
    /// Sends no signal. Closes the dialog, which keeps what it has changed, unless the color is the dialog's.
    void setColor(const QColor &color);

    QSize sizeHint() const override;

Q_SIGNALS:
    /// The user has chosen another color.
    void colorChosen(const QColor &color);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void openDialog();
    void showColor(const QColor &color);
    void choose(const QColor &color);
    QList<QColor> recentColors() const;
    void remember(const QColor &color);
    void fillMenu();

    const Alpha m_alpha;
    UserDefaults &m_defaults;
    QColor m_color;
    QPointer<QColorDialog> m_dialog;
};

} // namespace plexa

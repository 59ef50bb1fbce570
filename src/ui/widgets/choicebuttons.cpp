// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/widgets/choicebuttons.h"

#include "ui/widgets/look.h"

#include <QAccessibleWidget>
#include <QButtonGroup>
#include <QGridLayout>
#include <QIcon>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>

namespace plexa
{
namespace
{

constexpr int kIconSide = 20;

QString lookOfJoinedButtons()
{
    return QStringLiteral(R"(
QPushButton { border: 1px solid %1; border-right: none; padding: 4px 8px; background: %2; color: %3; }
QPushButton:hover { background: %4; }
QPushButton:checked { background: %5; border-color: %6; color: white; }
QPushButton:focus { border-color: %6; }
QPushButton:checked:focus { border: 2px solid %7; padding: 3px 7px; }
QPushButton:disabled { color: %8; }
QPushButton:checked:disabled { background: %8; border-color: %8; color: white; }
QPushButton[end="first"] { border-top-left-radius: 4px; border-bottom-left-radius: 4px; }
QPushButton[end="last"] { border-top-right-radius: 4px; border-bottom-right-radius: 4px; }
QPushButton[end="last"] { border-right: 1px solid %1; }
QPushButton[end="last"]:checked { border-right-color: %6; }
QPushButton[end="last"]:checked:focus { border-right: 2px solid %7; }
)")
        .arg(look::kControlBorder.name(), look::kButton.name(), look::kText.name(), look::kButtonHover.name(),
             look::kAccent.name(), look::kDarkAccent.name(), look::kDarkestAccent.name(),
             look::kDisabledText.name());
}

/// The icon, white while its button is checked.
QIcon whiteIfChecked(const QIcon &icon)
{
    QIcon both;
    for (const double scale : {1.0, 1.5, 2.0, 3.0}) {
        const QPixmap plain = icon.pixmap(QSize(kIconSide, kIconSide), scale);
        both.addPixmap(plain, QIcon::Normal, QIcon::Off);
        QPixmap white = plain;
        QPainter painter(&white);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(QRect(QPoint(), white.size()), Qt::white);
        painter.end();
        for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Active, QIcon::Disabled})
            both.addPixmap(white, mode, QIcon::On);
    }
    return both;
}

QAccessibleInterface *makeInterface(const QString &, QObject *object)
{
    auto *const group = qobject_cast<ChoiceButtons *>(object);
    return group ? new QAccessibleWidget(group, QAccessible::Grouping) : nullptr;
}

} // namespace

ChoiceButtons::ChoiceButtons(const QString &purpose, Look look, int columns, QWidget *parent)
    : QWidget(parent)
    , m_look(look)
    , m_columns(columns)
    , m_layout(new QGridLayout(this))
    , m_buttons(new QButtonGroup(this))
{
    QAccessible::installFactory(makeInterface); // ignores a factory that is installed already
    setAccessibleName(purpose);
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(isJoined() ? 0 : look::kSmallGap);
    setSizePolicy(look == Look::Texts ? QSizePolicy::Preferred : QSizePolicy::Maximum, QSizePolicy::Maximum);
    // Pictures of directions, and places on a photo, are where they point to in every language.
    if (look == Look::Icons || columns > 0)
        setLayoutDirection(Qt::LeftToRight);
    if (isJoined())
        setStyleSheet(lookOfJoinedButtons());
    connect(m_buttons, &QButtonGroup::idClicked, this, &ChoiceButtons::chosen);
}

QAbstractButton *ChoiceButtons::addChoice(const QString &text)
{
    return addChoice(text, {});
}

QAbstractButton *ChoiceButtons::makeButton(const QString &text, const QIcon &icon) const
{
    if (!isJoined())
        return new QRadioButton(m_columns == 0 ? text : QString());
    auto *const button = new QPushButton(m_look == Look::Texts ? text : QString());
    if (!icon.isNull())
        button->setIcon(whiteIfChecked(icon));
    button->setIconSize(QSize(kIconSide, kIconSide));
    button->setCheckable(true);
    button->setAutoExclusive(true); // a radio button for assistive technology
    return button;
}

QAbstractButton *ChoiceButtons::addChoice(const QString &text, const QIcon &icon)
{
    QAbstractButton *const button = makeButton(text, icon);
    button->setToolTip(text);
    button->setAccessibleName(text);
    const int index = int(m_buttons->buttons().size());
    m_buttons->addButton(button, index);
    const int columns = m_columns == 0 ? index + 1 : m_columns;
    m_layout->addWidget(button, index / columns, index % columns);
    if (isJoined())
        joinLast();
    // The arrow keys move inside the group, and what they reach is chosen.
    connect(button, &QAbstractButton::toggled, this, [this, button, index](bool isOn) {
        if (isJoined())
            updateTabStops();
        if (isOn && button->hasFocus() && !button->isDown())
            Q_EMIT chosen(index);
    });
    return button;
}

/// Joined buttons are round at the ends of their row.
void ChoiceButtons::joinLast() const
{
    const QList<QAbstractButton *> buttons = m_buttons->buttons();
    const auto last = buttons.size() - 1;
    if (last > 1)
        buttons[last - 1]->setProperty("end", QString());
    // The style sheet names the ends from the left.
    const bool isReversed = layoutDirection() == Qt::RightToLeft;
    const QString begin = isReversed ? QStringLiteral("last") : QStringLiteral("first");
    const QString end = isReversed ? QStringLiteral("first") : QStringLiteral("last");
    buttons[last]->setProperty("end", last == 0 ? begin : end);
    updateTabStops();
}

void ChoiceButtons::updateTabStops() const
{
    for (QAbstractButton *const button : m_buttons->buttons())
        button->setFocusPolicy(button->isChecked() || index() < 0 ? Qt::StrongFocus : Qt::ClickFocus);
}

int ChoiceButtons::index() const
{
    return m_buttons->checkedId();
}

void ChoiceButtons::setIndex(int index)
{
    const QSignalBlocker blocker(this);
    if (QAbstractButton *const button = m_buttons->button(index)) {
        button->setChecked(true);
    } else if (QAbstractButton *const checked = m_buttons->checkedButton()) {
        m_buttons->setExclusive(false); // an exclusive group always has one
        checked->setChecked(false);
        m_buttons->setExclusive(true);
    }
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/widgets/segmentedswitch.h"

#include "ui/widgets/look.h"

#include <QAccessibleWidget>
#include <QHBoxLayout>
#include <QIcon>
#include <QPainter>
#include <QPushButton>

namespace plexa
{
namespace
{

constexpr int kIconSide = 20;

QString lookOfParts()
{
    return QStringLiteral(R"(
QPushButton { border: 1px solid %1; padding: 4px 8px; background: %2; color: %3; }
QPushButton:hover { background: %4; }
QPushButton:checked { background: %5; border-color: %6; color: white; }
QPushButton:focus { border-color: %6; }
QPushButton:checked:focus { border: 2px solid %7; padding: 3px 7px; }
QPushButton:disabled { color: %8; }
QPushButton:checked:disabled { background: %8; border-color: %8; color: white; }
QPushButton[end="first"] { border-top-left-radius: 4px; border-bottom-left-radius: 4px; border-right: none; }
QPushButton[end="last"] { border-top-right-radius: 4px; border-bottom-right-radius: 4px; }
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
    auto *const group = qobject_cast<SegmentedSwitch *>(object);
    return group ? new QAccessibleWidget(group, QAccessible::Grouping) : nullptr;
}

} // namespace

SegmentedSwitch::SegmentedSwitch(const QString &name, QWidget *parent)
    : QWidget(parent)
{
    QAccessible::installFactory(makeInterface); // ignores a factory that is installed already
    setAccessibleName(name);
    setStyleSheet(lookOfParts());
    auto *const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
}

QPushButton *SegmentedSwitch::addPart(const QString &text, const QIcon &icon)
{
    auto *const button = new QPushButton(text);
    if (!icon.isNull())
        button->setIcon(whiteIfChecked(icon));
    button->setIconSize(QSize(kIconSide, kIconSide));
    button->setCheckable(true);
    button->setAutoExclusive(true);
    button->setFocusPolicy(Qt::ClickFocus);
    connect(button, &QAbstractButton::toggled, button,
            [button](bool isOn) { button->setFocusPolicy(isOn ? Qt::StrongFocus : Qt::ClickFocus); });
    button->setProperty("end", m_parts.isEmpty() ? QStringLiteral("first") : QStringLiteral("last"));
    m_parts.append(button);
    layout()->addWidget(button);
    return button;
}

void SegmentedSwitch::check(qsizetype part)
{
    m_parts[part]->setChecked(true);
}

} // namespace plexa

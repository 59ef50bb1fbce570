// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/widgets/messagepage.h"

#include "ui/widgets/look.h"

#include <QAbstractButton>
#include <QIcon>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

namespace plexa
{
namespace
{

constexpr int kIconSide = 48;
constexpr double kTitleScale = 1.5; // of the font's size
constexpr int kButtonHeight = 32;

QLabel *centeredLabel()
{
    auto *const label = new QLabel;
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText); // names of files are no markup
    return label;
}

} // namespace

MessagePage::MessagePage(const QString &icon, QWidget *parent)
    : QWidget(parent)
    , m_title(centeredLabel())
    , m_explanation(centeredLabel())
    , m_buttons(new QHBoxLayout)
{
    auto *const picture = new QLabel;
    picture->setPixmap(QIcon(QStringLiteral(":/icons/%1.svg").arg(icon))
                           .pixmap(QSize(kIconSide, kIconSide), devicePixelRatioF()));
    QFont font = m_title->font();
    font.setPointSizeF(font.pointSizeF() * kTitleScale);
    m_title->setFont(font);
    QPalette palette = m_explanation->palette();
    palette.setColor(QPalette::WindowText, look::kSecondaryText);
    m_explanation->setPalette(palette);
    m_buttons->setSpacing(look::kGap);

    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(look::kPageGap, look::kPageGap, look::kPageGap, look::kPageGap);
    column->setSpacing(look::kLargeGap);
    column->addStretch();
    column->addWidget(picture, 0, Qt::AlignHCenter);
    column->addWidget(m_title);
    column->addLayout(m_buttons);
    column->setAlignment(m_buttons, Qt::AlignHCenter);
    column->addWidget(m_explanation); // over the whole width: its height depends on it
    column->addStretch();
}

void MessagePage::setTitle(const QString &title)
{
    m_title->setText(title);
    setAccessibleName(title);
}

void MessagePage::setExplanation(const QString &explanation)
{
    m_explanation->setText(explanation);
    setAccessibleDescription(explanation);
}

void MessagePage::addButton(QAbstractButton *button)
{
    button->setMinimumHeight(kButtonHeight);
    m_buttons->addWidget(button);
    if (!focusProxy())
        setFocusProxy(button);
}

void MessagePage::setIsDropTarget(bool isTarget)
{
    m_isDropTarget = isTarget;
    update();
}

void MessagePage::setIsHovered(bool isHovered)
{
    m_isHovered = isHovered;
    update();
}

void MessagePage::paintEvent(QPaintEvent *)
{
    if (!m_isDropTarget)
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(m_isHovered ? QPen(look::kAccent, 2) : QPen(look::kControlBorder, 1.5, Qt::DashLine));
    if (m_isHovered)
        painter.setBrush(Qt::white);
    constexpr int kInset = look::kLargeGap;
    painter.drawRoundedRect(QRectF(rect()).adjusted(kInset, kInset, -kInset, -kInset), look::kGap,
                            look::kGap);
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/widgets/foldingsection.h"

#include "platform/userdefaults.h"

#include <QHBoxLayout>
#include <QIcon>
#include <QToolButton>
#include <QVBoxLayout>

namespace plexa
{

FoldingSection::FoldingSection(const QString &title, const Folded &folded, QWidget *content,
                               UserDefaults &defaults, QWidget *parent)
    : QWidget(parent)
    , m_key(folded.key)
    , m_defaults(defaults)
    , m_header(new QToolButton)
    , m_headerRow(new QHBoxLayout)
    , m_content(content)
{
    m_header->setText(title);
    m_header->setToolTip(tr("Show or hide these settings"));
    m_header->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_header->setAutoRaise(true);
    m_header->setFocusPolicy(Qt::StrongFocus);
    m_header->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    QFont font = m_header->font();
    font.setWeight(QFont::DemiBold);
    m_header->setFont(font);

    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    m_headerRow->addWidget(m_header, 1);
    layout->addLayout(m_headerRow);
    layout->addWidget(content);
    setFolded(defaults.isStored(m_key) ? defaults.boolForKey(m_key) : folded.isFoldedAtFirst);
    connect(m_header, &QAbstractButton::clicked, this, [this] {
        setFolded(!isFolded());
        m_defaults.setObject(m_key, isFolded());
        Q_EMIT foldedByUser(isFolded());
    });
}

/// Another section of the setting may have been folded while this one was out of sight.
void FoldingSection::showEvent(QShowEvent *event)
{
    if (m_defaults.isStored(m_key) && m_defaults.boolForKey(m_key) != isFolded())
        setFolded(!isFolded());
    QWidget::showEvent(event);
}

void FoldingSection::setHeaderWidget(QWidget *widget)
{
    m_headerWidget = widget;
    m_headerRow->addWidget(widget);
    widget->setVisible(!isFolded());
}

void FoldingSection::setFolded(bool isFolded)
{
    m_content->setVisible(!isFolded);
    setSizePolicy(QSizePolicy::Preferred, isFolded ? QSizePolicy::Fixed : QSizePolicy::Preferred);
    if (m_headerWidget)
        m_headerWidget->setVisible(!isFolded);
    const bool isReversed = layoutDirection() == Qt::RightToLeft;
    const char *const name = !isFolded ? "unfolded" : isReversed ? "folded-reversed" : "folded";
    m_header->setIcon(QIcon(QStringLiteral(":/icons/%1.svg").arg(QLatin1StringView(name))));
    m_header->setAccessibleDescription(isFolded ? tr("folded") : QString());
}

} // namespace plexa

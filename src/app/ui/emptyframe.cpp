// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/ui/emptyframe.h"

#include "app/ui/emptyhint.h"
#include "app/ui/filedrops.h"

#include <QDragEnterEvent>

namespace plexa
{

EmptyFrame::EmptyFrame(QPalette::ColorRole background, QWidget *parent)
    : QWidget(parent)
{
    setBackgroundRole(background);
    setAutoFillBackground(true);
    setAcceptDrops(true);
}

void EmptyFrame::setHint(const QString &hint)
{
    m_hint = hint;
    update();
}

void EmptyFrame::paintEvent(QPaintEvent *event)
{
    QWidget::paintEvent(event);
    if (!m_hint.isEmpty())
        paintEmptyHint(this, m_hint);
}

void EmptyFrame::dragEnterEvent(QDragEnterEvent *event)
{
    acceptFiles(event);
}

void EmptyFrame::dropEvent(QDropEvent *event)
{
    acceptFiles(event);
    Q_EMIT filesDropped(droppedFiles(event->mimeData()));
}

} // namespace plexa

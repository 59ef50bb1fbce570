// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/widgets/dropframe.h"

#include "ui/widgets/filedrops.h"
#include "ui/widgets/look.h"

#include <QDropEvent>
#include <QPainter>

namespace plexa
{
namespace
{

constexpr double kLine = 4;

} // namespace

DropFrame::DropFrame(QWidget *accepts, QWidget *pane)
    : QWidget(pane)
    , m_accepts(accepts)
    , m_pane(pane)
{
    setObjectName(QStringLiteral("dropFrame"));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    hide();
    accepts->installEventFilter(this);
    if (pane != accepts)
        pane->installEventFilter(this);
}

bool DropFrame::eventFilter(QObject *object, QEvent *event)
{
    switch (event->type()) {
    case QEvent::DragEnter:
        if (object == m_accepts && isEnabled() && canAcceptFiles(*static_cast<QDropEvent *>(event))) {
            setGeometry(m_pane->rect());
            raise();
            show();
        }
        break;
    case QEvent::DragLeave:
    case QEvent::Drop:
        if (object == m_accepts)
            hide();
        break;
    case QEvent::Resize:
        setGeometry(m_pane->rect());
        break;
    default:
        break;
    }
    return false;
}

void DropFrame::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(look::kMark, kLine));
    painter.drawRect(QRectF(rect()).adjusted(kLine / 2, kLine / 2, -kLine / 2, -kLine / 2));
}

} // namespace plexa

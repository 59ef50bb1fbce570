// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/widgets/imagewell.h"

#include "ui/widgets/checkedground.h"
#include "ui/widgets/filedrops.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QMenu>
#include <QMimeData>
#include <QPainter>

namespace plexa
{
namespace
{

constexpr int kHeight = 120;
constexpr int kPadding = 8;
constexpr int kCheck = 8;

bool isPicture(const QMimeData *data)
{
    return data->hasImage() || !droppedFiles(data).isEmpty();
}

} // namespace

ImageWell::ImageWell(const QString &purpose, QWidget *parent)
    : QAbstractButton(parent)
{
    setAccessibleName(purpose);
    setAcceptDrops(true);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setFixedHeight(kHeight);
    setCursor(Qt::PointingHandCursor);
}

void ImageWell::setImage(const QImage &image)
{
    m_image = image;
    update();
}

void ImageWell::setHint(const QString &hint)
{
    m_hint = hint;
    update();
}

QSize ImageWell::pixelSize() const
{
    const int width = std::max(this->width(), sizeHint().width()) - 2 * kPadding;
    return QSize(std::max(width, 1), kHeight - 2 * kPadding) * devicePixelRatio();
}

void ImageWell::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isMarked = hasFocus() || m_isDropTarget;
    painter.setPen(QPen(palette().color(isMarked ? QPalette::Highlight : QPalette::Shadow), isMarked ? 2 : 1,
                        m_image.isNull() && !isMarked ? Qt::DashLine : Qt::SolidLine));
    painter.setBrush(palette().base());
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 4, 4);
    const QRect room = rect().adjusted(kPadding, kPadding, -kPadding, -kPadding);
    if (m_image.isNull()) {
        painter.setPen(palette().color(QPalette::WindowText));
        painter.drawText(room, Qt::AlignCenter | Qt::TextWordWrap, m_hint);
        return;
    }
    QRect place(QPoint(), m_image.size().scaled(room.size(), Qt::KeepAspectRatio));
    place.moveCenter(room.center());
    painter.setRenderHint(QPainter::Antialiasing, false);
    if (m_image.hasAlphaChannel())
        drawCheckedGround(painter, place, kCheck);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(place, m_image);
}

bool ImageWell::take(const QMimeData *data)
{
    const QStringList files = droppedFiles(data);
    if (!files.isEmpty()) {
        Q_EMIT fileChosen(files.front());
        return true;
    }
    const auto image = data->hasImage() ? qvariant_cast<QImage>(data->imageData()) : QImage();
    if (image.isNull())
        return false;
    Q_EMIT imagePasted(image);
    return true;
}

void ImageWell::paste()
{
    if (const QMimeData *const data = QGuiApplication::clipboard()->mimeData())
        take(data);
}

void ImageWell::dragEnterEvent(QDragEnterEvent *event)
{
    if (!isPicture(event->mimeData()))
        return;
    event->setDropAction(Qt::CopyAction);
    event->accept();
    m_isDropTarget = true;
    update();
}

void ImageWell::dragLeaveEvent(QDragLeaveEvent *)
{
    m_isDropTarget = false;
    update();
}

void ImageWell::dropEvent(QDropEvent *event)
{
    m_isDropTarget = false;
    update();
    if (take(event->mimeData())) {
        event->setDropAction(Qt::CopyAction);
        event->accept();
    }
}

void ImageWell::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Paste))
        paste();
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

void ImageWell::contextMenuEvent(QContextMenuEvent *event)
{
    QMenu menu(this);
    menu.addAction(tr("Choose Picture…"), this, &QAbstractButton::click);
    QAction *const pasting = menu.addAction(tr("Paste"), this, &ImageWell::paste);
    const QMimeData *const data = QGuiApplication::clipboard()->mimeData();
    pasting->setEnabled(data && isPicture(data));
    menu.exec(event->globalPos());
}

} // namespace plexa

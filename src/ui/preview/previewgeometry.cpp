// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/preview/previewgeometry.h"

#include <algorithm>

namespace plexa
{
namespace
{

/// The center of the view on one axis of the layer, moved so that a large layer leaves at most the padding
/// free and a small one is in the middle.
double settledCenter(double center, double view, double layer, double padding)
{
    const double margin = layer > view ? padding : (view - layer) / 2;
    double position = std::min(view / 2 - center, margin);
    if (view - margin > layer + position)
        position = view - margin - layer;
    return view / 2 - position;
}

} // namespace

void PreviewGeometry::setViewSize(QSizeF points)
{
    m_view = points;
    settle();
}

void PreviewGeometry::setImageSize(QSizeF pixels)
{
    m_image = pixels;
    m_zoomFactor = 0;
    settle();
}

void PreviewGeometry::setImagePadding(double points)
{
    m_padding = points;
    settle();
}

void PreviewGeometry::setZoomFactor(double factor)
{
    m_zoomFactor = std::clamp(factor, 0.0, 1.0);
    settle();
}

void PreviewGeometry::setCenteredImagePoint(QPointF point)
{
    m_center = point;
    settle();
}

void PreviewGeometry::show(QPointF imagePoint, QPointF viewPoint)
{
    if (!hasImage())
        return;
    const double ratio = zoomedToOriginalRatio();
    const QPointF fromMiddle = viewPoint - QPointF(m_view.width(), m_view.height()) / 2;
    setCenteredImagePoint(imagePoint - QPointF(fromMiddle.x(), -fromMiddle.y()) / ratio);
}

void PreviewGeometry::settle()
{
    if (!hasImage())
        return;
    if (fullImageFitsInView())
        m_zoomFactor = 0;
    const QSizeF layer = layerSize();
    const double ratio = zoomedToOriginalRatio();
    if (m_zoomFactor <= 0 || !(ratio > 0)) {
        m_center = QPointF(m_image.width(), m_image.height()) / 2;
        return;
    }
    m_center = QPointF(settledCenter(m_center.x() * ratio, m_view.width(), layer.width(), m_padding),
                       settledCenter(m_center.y() * ratio, m_view.height(), layer.height(), m_padding)) /
               ratio;
}

bool PreviewGeometry::fullImageFitsInView() const
{
    return m_view.width() >= m_image.width() && m_view.height() >= m_image.height();
}

QSizeF PreviewGeometry::layerSize() const
{
    if (!hasImage() || fullImageFitsInView())
        return m_image;
    const QSizeF room =
        QSizeF(m_view.width() - 2 * m_padding, m_view.height() - 2 * m_padding).expandedTo(QSizeF(1, 1));
    const double aspect = m_image.width() / m_image.height();
    const double z = m_zoomFactor;
    if (room.height() / m_image.height() >= room.width() / m_image.width()) {
        const double width = room.width() * (1 - z) + m_image.width() * z;
        return {width, width / aspect};
    }
    const double height = room.height() * (1 - z) + m_image.height() * z;
    return {aspect * height, height};
}

QRectF PreviewGeometry::layerRectInView() const
{
    const QSizeF layer = layerSize();
    const double ratio = zoomedToOriginalRatio();
    return {QPointF(m_view.width() / 2 - m_center.x() * ratio,
                    m_view.height() / 2 - (layer.height() - m_center.y() * ratio)),
            layer};
}

double PreviewGeometry::zoomedToOriginalRatio() const
{
    return hasImage() ? layerSize().width() / m_image.width() : 1;
}

QPointF PreviewGeometry::viewToImage(QPointF point) const
{
    const QRectF layer = layerRectInView();
    return QPointF(point.x() - layer.x(), layer.bottom() - point.y()) / zoomedToOriginalRatio();
}

QPointF PreviewGeometry::imageToView(QPointF point) const
{
    const QRectF layer = layerRectInView();
    const QPointF zoomed = point * zoomedToOriginalRatio();
    return {layer.x() + zoomed.x(), layer.bottom() - zoomed.y()};
}

QRectF PreviewGeometry::viewToImage(const QRectF &rect) const
{
    return {viewToImage(rect.bottomLeft()), rect.size() / zoomedToOriginalRatio()};
}

QRectF PreviewGeometry::imageToView(const QRectF &rect) const
{
    const QSizeF size = rect.size() * zoomedToOriginalRatio();
    return {imageToView(rect.topLeft()) - QPointF(0, size.height()), size};
}

bool isQuarterOnImage(const QRectF &watermark, const QRectF &image)
{
    return watermark.x() + 0.75 * watermark.width() >= image.x() &&
           watermark.x() + 0.25 * watermark.width() <= image.x() + image.width() &&
           watermark.y() + 0.75 * watermark.height() >= image.y() &&
           watermark.y() + 0.25 * watermark.height() <= image.y() + image.height();
}

} // namespace plexa

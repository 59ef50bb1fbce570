// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>

namespace plexa
{

/// Where a photo lies in the preview. Three systems of coordinates:
/// - view: points of the widget, origin at the top left, y downwards;
/// - layer ("zoomed image"): the photo at the current zoom, in points, origin at its bottom left, y upwards;
/// - image: pixels of the photo, origin at its bottom left, y upwards.
/// A value; knows no widget.
class PreviewGeometry
{
public:
    void setViewSize(QSizeF points);
    /// Shows the middle of a photo of this size, fitted; an empty size is no photo.
    void setImageSize(QSizeF pixels);
    /// The margin that is kept around a fitted photo, in points.
    void setImagePadding(double points);
    /// 0 fits the whole photo into the view, 1 shows a pixel in each point; the size of the layer is
    /// interpolated between these. Clamped. The same point of the photo stays in the middle of the view.
    void setZoomFactor(double factor);
    /// Image coordinates; moved so that the layer leaves no gap that it could fill.
    void setCenteredImagePoint(QPointF point);
    /// Moves the photo so that this image point is shown at this view point, as far as possible.
    void show(QPointF imagePoint, QPointF viewPoint);

    QSizeF viewSize() const { return m_view; }
    QSizeF imageSize() const { return m_image; }
    bool hasImage() const { return !m_image.isEmpty(); }
    double zoomFactor() const { return m_zoomFactor; }
    QPointF centeredImagePoint() const { return m_center; }

    /// Does the whole photo fit into the view with a pixel in each point? Then there is nothing to zoom.
    bool fullImageFitsInView() const;

    QSizeF layerSize() const;
    /// The layer in the view; its corner is the top left one.
    QRectF layerRectInView() const;
    /// Layer points for each pixel of the photo.
    double zoomedToOriginalRatio() const;

    QPointF viewToImage(QPointF point) const;
    QPointF imageToView(QPointF point) const;
    /// A rectangle's corner is the least x and the least y in its own system.
    QRectF viewToImage(const QRectF &rect) const;
    QRectF imageToView(const QRectF &rect) const;

private:
    void settle();

    QSizeF m_view;
    QSizeF m_image;
    double m_padding = 20;
    double m_zoomFactor = 0;
    QPointF m_center; ///< image coordinates
};

/// May a watermark be dragged there? At least a quarter of its width and a quarter of its height have to stay
/// on the photo. Both rectangles in one system of coordinates.
bool isQuarterOnImage(const QRectF &watermark, const QRectF &image);

} // namespace plexa

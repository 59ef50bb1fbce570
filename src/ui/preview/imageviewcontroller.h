// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/preview/imageviewwithwatermarkcontrol.h"
#include "ui/preview/previewrenderer.h"

#include <QStringList>
#include <QTimer>

namespace plexa
{

class AppController;

/// Shows the photo that has the focus in the preview, with the watermarks that a copy would have, and stores
/// the places to which the user drags them. Main thread.
class ImageViewController final : public QObject
{
    Q_OBJECT

public:
    enum class ZoomStep { In, Out };
    enum class ZoomExtreme { Fit, FullSize };

    /// All of them outlive this object.
    ImageViewController(AppController &app, ImageViewWithWatermarkControl &view);

    /// @param image  loaded; null shows none
    void setImageObject(const std::shared_ptr<ImageObject> &image);
    const std::shared_ptr<ImageObject> &imageObject() const { return m_imageObject; }

    /// Draws the photo again, at once as the screen needs it and half a second later from all of its pixels.
    void refresh();

    /// Clamped to 0..1.
    void setZoomFactor(double factor) { m_view.setZoomFactor(factor); }
    double zoomFactor() const { return m_view.zoomFactor(); }
    void changeZoomByStep(ZoomStep step);
    void changeZoomToExtreme(ZoomExtreme extreme);
    bool canZoom() const { return m_view.imageIsShown() && !m_view.fullImageFitsInView(); }
    bool canZoomIn() const { return canZoom() && zoomFactor() < 1; }
    bool canZoomOut() const { return canZoom() && zoomFactor() > 0; }

    /// Name and size of the photo; empty without one.
    QString info() const { return m_info; }
    /// What the user should know about the shown watermarks; empty: nothing.
    QStringList messages() const { return m_messages; }
    /// What the user has to do to see a watermark; empty: nothing.
    QString hint() const { return m_hint; }
    bool isBusy() const { return m_renderer.isBusy() || m_isLoading; }

Q_SIGNALS:
    void zoomControlsChanged();
    /// Of info(), messages(), hint() or isBusy().
    void infoChanged();

private:
    void connectAll();
    void showLoading(const std::shared_ptr<ImageObject> &image);
    void photoChanged();
    void showInfo();
    void request(PreviewRequest::Quality quality);
    void show(const PreviewPicture &picture);
    void drag(const std::optional<QPointF> &origin);

    AppController &m_app;
    ImageViewWithWatermarkControl &m_view;
    std::shared_ptr<ImageObject> m_imageObject;
    int m_photoVersion = 0;
    int m_serial = 0; // of the newest request
    std::optional<QPointF> m_draggedTo;
    QString m_info;
    QStringList m_messages;
    QString m_hint;
    bool m_isLoading = false; // the photo that has the focus is not loaded yet
    QTimer m_zoomedImageUpdateTimer;
    PreviewRenderer m_renderer;
};

} // namespace plexa

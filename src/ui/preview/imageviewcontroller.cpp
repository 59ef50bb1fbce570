// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/preview/imageviewcontroller.h"

#include "app/appcontroller.h"
#include "platform/userdefaults.h"

#include <QFileInfo>

#include <utility>

namespace plexa
{
namespace
{

constexpr std::chrono::milliseconds kUpdateDelay(500);
constexpr double kZoomStep = 0.1;

} // namespace

ImageViewController::ImageViewController(AppController &app, ImageViewWithWatermarkControl &view)
    : m_app(app)
    , m_view(view)
    , m_renderer(app.photoServices().fonts)
{
    m_view.setImagePadding(0);
    m_view.setToolMode(ImageView::ToolMode::Zoom);
    m_zoomedImageUpdateTimer.setSingleShot(true);
    m_zoomedImageUpdateTimer.setInterval(kUpdateDelay);
    connectAll();
    setImageObject(m_app.imageSet().shownImage());
}

void ImageViewController::connectAll()
{
    const ImageSet &set = m_app.imageSet();
    connect(&set, &ImageSet::shownImageChanged, this, &ImageViewController::setImageObject);
    connect(&set, &ImageSet::shownImageAboutToLoad, this, &ImageViewController::showLoading);
    connect(&set, &ImageSet::fitToWindowRequested, this, [this] { setZoomFactor(0); });
    connect(&m_app, &AppController::previewOutdated, this, &ImageViewController::refresh);
    connect(&m_app.appliedPresets(), &AppliedPresets::selectedRowsChanged, this,
            &ImageViewController::refresh);
    connect(&m_app, &AppController::imageOutdated, this, [this](const std::shared_ptr<ImageObject> &image) {
        if (image != m_imageObject)
            return;
        m_view.cancelDrag(); // the photo may have been turned: its coordinates are others
        m_view.purgeCaches();
        photoChanged();
    });

    connect(&m_view, &ImageView::pictureWanted, this, &ImageViewController::refresh);
    connect(&m_view, &ImageView::didChangeZoomFactorTo, this, &ImageViewController::zoomControlsChanged);
    connect(&m_view, &ImageView::canZoomStatusDidChange, this, &ImageViewController::zoomControlsChanged);
    using View = ImageViewWithWatermarkControl;
    connect(&m_view, &View::draggedWatermarkRectTo, this,
            [this](const QRectF &rect) { drag(rect.topLeft()); });
    connect(&m_view, &View::dragCanceled, this, [this] { drag({}); });
    connect(&m_view, &View::didMoveWatermarkRectTo, this, [this](const QRectF &rect) {
        using enum ManualPositions::EditKind;
        const auto kind = std::exchange(m_draggedTo, std::nullopt) ? Drag : Keys;
        if (m_imageObject)
            m_app.placeWatermark(m_imageObject, rect.topLeft(), kind);
    });

    connect(&m_zoomedImageUpdateTimer, &QTimer::timeout, this,
            [this] { request(PreviewRequest::Quality::Full); });
    connect(&m_renderer, &PreviewRenderer::rendered, this, &ImageViewController::show);
    connect(&m_renderer, &PreviewRenderer::busyChanged, this, &ImageViewController::infoChanged);
}

void ImageViewController::setImageObject(const std::shared_ptr<ImageObject> &image)
{
    m_isLoading = false;
    m_view.setNoImageInfoString(tr("Select an image in the browser to preview"));
    if (image == m_imageObject && (!image || m_view.imageIsShown())) {
        showInfo();
        return;
    }
    if (m_imageObject)
        m_imageObject->disconnect(this);
    m_imageObject = image;
    m_draggedTo.reset();
    m_view.setShowWatermarkRect(false);
    if (image) {
        connect(image.get(), &ImageObject::metadataChanged, this, &ImageViewController::photoChanged);
        connect(image.get(), &ImageObject::pathChanged, this, &ImageViewController::photoChanged);
    }
    ++m_photoVersion;
    m_messages.clear();
    m_view.setImageSize(image ? image->facts().pixelSize() : QSize());
    showInfo();
    if (!m_view.imageIsShown()) // else the view has asked for a picture
        refresh();
}

/// The photo that has the focus cannot be shown yet.
void ImageViewController::showLoading(const std::shared_ptr<ImageObject> &image)
{
    m_isLoading = true;
    m_info = QFileInfo(image->path()).fileName();
    m_view.setNoImageInfoString(tr("Loading %1…").arg(m_info));
    Q_EMIT infoChanged();
}

/// Its pixels, facts or name.
void ImageViewController::photoChanged()
{
    if (!m_imageObject)
        return;
    ++m_photoVersion;
    const QSize size = m_imageObject->facts().pixelSize();
    showInfo();
    if (m_view.geometry().imageSize() != QSizeF(size))
        m_view.setImageSize(size); // asks for a picture
    else
        refresh();
}

void ImageViewController::showInfo()
{
    m_info.clear();
    if (m_imageObject) {
        const PhotoFacts facts = m_imageObject->facts();
        m_info = tr("%1, %2x%3")
                     .arg(QFileInfo(facts.path()).fileName())
                     .arg(facts.unscaledSize().width())
                     .arg(facts.unscaledSize().height());
    }
    Q_EMIT infoChanged();
}

void ImageViewController::refresh()
{
    request(PreviewRequest::Quality::Screen);
    const AppliedPresets &applied = m_app.appliedPresets();
    const bool isOneWanted = m_imageObject && !applied.areCombined() && !applied.currentWPreset() &&
                             !applied.effectivePresets().empty();
    const QString hint = isOneWanted ? tr("Select one applied preset to see it.") : QString();
    if (std::exchange(m_hint, hint) != hint)
        Q_EMIT infoChanged();
}

void ImageViewController::request(PreviewRequest::Quality quality)
{
    if (!m_imageObject || !m_view.imageIsShown()) {
        m_zoomedImageUpdateTimer.stop();
        m_renderer.cancel();
        Q_EMIT zoomControlsChanged();
        return;
    }
    const ImageView::Wanted wanted = m_view.wantedPicture();
    PreviewRequest request;
    request.photo = m_imageObject;
    request.photoVersion = m_photoVersion;
    const AppliedPresets &applied = m_app.appliedPresets();
    if (applied.areCombined())
        request.presets = applied.effectivePresetsNow();
    else if (const std::shared_ptr<WPreset> current = applied.currentWPreset())
        request.presets = {{current, current->values()}};
    request.draggedTo = m_draggedTo;
    request.layer = wanted.layer;
    request.part = wanted.part;
    request.quality = quality;
    request.serial = ++m_serial;
    if (wanted.part.isEmpty())
        return;
    m_renderer.request(request);
    if (quality == PreviewRequest::Quality::Screen && !m_draggedTo)
        m_zoomedImageUpdateTimer.start();
    else
        m_zoomedImageUpdateTimer.stop();
}

void ImageViewController::show(const PreviewPicture &picture)
{
    if (!picture.image.isNull())
        m_view.setPicture(picture.image, {picture.layer, picture.part});
    if (picture.serial == m_serial) { // an older one may be from before the user moved the watermark
        if (picture.watermarkRect && !m_draggedTo)
            m_view.setWatermarkRect(*picture.watermarkRect);
        m_view.setShowWatermarkRect(picture.watermarkRect && !m_app.appliedPresets().areCombined());
    }
    if (m_messages != picture.messages) {
        m_messages = picture.messages;
        Q_EMIT infoChanged();
    }
}

void ImageViewController::drag(const std::optional<QPointF> &origin)
{
    m_draggedTo = origin;
    refresh();
}

void ImageViewController::changeZoomByStep(ZoomStep step)
{
    setZoomFactor(zoomFactor() + (step == ZoomStep::In ? kZoomStep : -kZoomStep));
}

void ImageViewController::changeZoomToExtreme(ZoomExtreme extreme)
{
    setZoomFactor(extreme == ZoomExtreme::Fit ? 0 : 1);
}

} // namespace plexa

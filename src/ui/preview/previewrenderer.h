// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/backgroundjob.h"
#include "images/imageobject.h"

#include <QImage>
#include <QObject>
#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

namespace plexa
{

/// The picture that the preview wants.
struct PreviewRequest {
    enum class Quality {
        Screen, ///< from the photo as it is reduced while it is decoded
        Full,   ///< from all of its pixels
    };

    std::shared_ptr<ImageObject> photo; ///< loaded
    int photoVersion = 0; ///< a number of its own for each photo, and again when its pixels or facts change
    std::vector<AppliedPreset> presets; ///< drawn in this order
    std::optional<QPointF>
        draggedTo; ///< while the first one's watermark is dragged: its origin, photo pixels
    QSize layer;   ///< the size to which the whole photo is scaled, at most its own
    QRect part;    ///< the part of the layer that is wanted; origin at its top left
    Quality quality = Quality::Screen;
    int serial = 0; ///< a number of its own, for the picture
};

/// A part of a photo with its watermarks.
struct PreviewPicture {
    QImage image;                        ///< null when the photo could not be read
    QSize layer;                         ///< as requested
    QRect part;                          ///< as requested
    int serial = 0;                      ///< of the request
    bool isPlaceholder = false;          ///< made of the thumbnail, until the photo is decoded
    std::optional<QRectF> watermarkRect; ///< of the first preset; photo pixels, origin at the bottom left
    QStringList messages;                ///< why the photo or a preset could not be drawn, and notices
};

/// Draws photos with their watermarks for the screen, on a thread of its own. The newest request is the one
/// that counts: older ones that wait are dropped, and one under way is canceled if it is about another photo
/// or takes long. A request that changes only presets or a place never cancels the one before it, so that the
/// preview moves while the user drags a slider. Main thread.
class PreviewRenderer final : public QObject
{
    Q_OBJECT

public:
    /// @param fonts  outlives this object
    explicit PreviewRenderer(const FontCatalog &fonts);
    ~PreviewRenderer() override;

    void request(const PreviewRequest &request);
    /// Nothing is wanted any more.
    void cancel();
    bool isBusy() const { return m_next || m_job.isRunning(); }

Q_SIGNALS:
    /// A picture of the photo of the newest request.
    void rendered(const plexa::PreviewPicture &picture);
    /// isBusy() has changed.
    void busyChanged(bool isBusy);

private:
    class Work;

    void startNext();

    const std::shared_ptr<Work> m_work; // used by the job's thread only while it runs
    PreviewRequest m_running;
    std::optional<PreviewRequest> m_next;
    bool m_wasBusy = false;
    BackgroundJob m_job;
};

} // namespace plexa

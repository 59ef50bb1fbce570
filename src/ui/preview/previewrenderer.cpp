// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/preview/previewrenderer.h"

#include "images/strips.h"
#include "raster/resampling.h"
#include "watermark/screenmarks.h"

#include <algorithm>
#include <functional>
#include <new>

namespace plexa
{

namespace
{

PreviewPicture failure(const PreviewRequest &request, const QString &reason)
{
    return {{}, request.layer, request.part, request.serial, false, {}, {reason}};
}

} // namespace

/// Draws one request after the other, and keeps what the next one may need: the bare part of the photo and
/// the prepared watermarks.
class PreviewRenderer::Work
{
public:
    using Deliver = std::function<void(const PreviewPicture &)>;

    explicit Work(const FontCatalog &fonts)
        : m_marks(fonts)
    {
    }

    /// @return false when the photo cannot be read
    bool draw(const PreviewRequest &request, const Deliver &deliver, const CancelCheck &isCanceled)
    {
        const bool isSamePhoto = m_photoVersion == request.photoVersion;
        if (!isSamePhoto)
            m_marks.clear();
        if (!isSamePhoto || m_layer != request.layer || m_part != request.part || isBetterWanted(request)) {
            if (!isSamePhoto && request.quality == PreviewRequest::Quality::Screen)
                drawPlaceholder(request, deliver, isCanceled);
            if (const Result<void> read = readBare(request, isCanceled); !read) {
                if (!canceled(isCanceled))
                    deliver(failure(request, read.error().text));
                return false;
            }
        }
        const PreviewPicture picture = marked(request, isCanceled);
        if (!canceled(isCanceled)) // else watermarks are missing
            deliver(picture);
        return true;
    }

private:
    bool isBetterWanted(const PreviewRequest &request) const
    {
        return request.quality == PreviewRequest::Quality::Full && !m_isFull;
    }

    void drawPlaceholder(const PreviewRequest &request, const Deliver &deliver, const CancelCheck &isCanceled)
    {
        const QImage thumbnail = request.photo->thumbnail();
        if (thumbnail.isNull())
            return;
        m_photoVersion = kNone; // the photo's own pixels are not there
        m_facts = request.photo->facts();
        m_layer = request.layer;
        m_bare = resampledPart(thumbnail.mirrored(), request.layer, request.part, isCanceled);
        PreviewPicture picture = marked(request, isCanceled);
        picture.isPlaceholder = true;
        if (!picture.image.isNull() && !canceled(isCanceled))
            deliver(picture);
    }

    Result<void> readBare(const PreviewRequest &request, const CancelCheck &isCanceled)
    {
        const bool isFull = request.quality == PreviewRequest::Quality::Full;
        const QSize wanted = isFull ? request.photo->facts().pixelSize() : request.layer;
        const Result<PhotoSnapshot> snapshot =
            request.photo->readReduced(std::max(wanted.width(), wanted.height()), isCanceled);
        if (!snapshot)
            return tl::unexpected(snapshot.error());
        const QImage bare = resampledPart(snapshot->pixels, request.layer, request.part, isCanceled);
        if (bare.isNull())
            return fail(outOfMemoryText());
        m_bare = bare;
        m_facts = snapshot->facts;
        m_isFull = snapshot->pixels.size() == m_facts.pixelSize();
        m_layer = request.layer;
        m_part = request.part;
        m_photoVersion = request.photoVersion;
        return {};
    }

    /// The bare part with the watermarks of the request.
    PreviewPicture marked(const PreviewRequest &request, const CancelCheck &isCanceled)
    {
        PreviewPicture picture{m_bare.copy(), request.layer, request.part, request.serial, false, {}, {}};
        std::vector<MarkOrder> orders;
        for (const AppliedPreset &preset : request.presets)
            orders.push_back(
                {preset.values, request.photo->customWatermarkRectOriginForWPreset(preset.preset.get())});
        if (!orders.empty() && request.draggedTo)
            orders.front().customOrigin = request.draggedTo;
        ScreenMarks::Drawn drawn =
            m_marks.draw(picture.image, request.part.topLeft(), request.layer, m_facts, orders, isCanceled);
        picture.watermarkRect = drawn.firstRect;
        picture.messages = std::move(drawn.messages);
        return picture;
    }

    // Photos must be destroyed on the main thread, so none is kept here.
    static constexpr int kNone = -1;
    int m_photoVersion = kNone; // that m_bare shows
    QSize m_layer;
    QRect m_part;
    bool m_isFull = false; // m_bare is made of all pixels
    QImage m_bare;
    PhotoFacts m_facts;
    ScreenMarks m_marks; // of that photo
};

PreviewRenderer::PreviewRenderer(const FontCatalog &fonts)
    : m_work(std::make_shared<Work>(fonts))
{
    connect(&m_job, &BackgroundJob::ended, this, &PreviewRenderer::startNext);
}

PreviewRenderer::~PreviewRenderer() = default;

void PreviewRenderer::request(const PreviewRequest &request)
{
    m_next = request;
    const bool isOther = m_running.photoVersion != request.photoVersion;
    if (m_job.isRunning() && (isOther || m_running.quality == PreviewRequest::Quality::Full))
        m_job.cancel();
    startNext();
}

void PreviewRenderer::cancel()
{
    m_next.reset();
    m_running = {};
    m_job.cancel();
}

void PreviewRenderer::startNext()
{
    if (m_next && !m_job.isRunning()) {
        m_running = *std::exchange(m_next, std::nullopt);
        m_job.start([this, work = m_work, request = m_running] {
            const auto deliver = [&](const PreviewPicture &picture) {
                m_job.post([this, picture, version = request.photoVersion] {
                    if ((m_next ? *m_next : m_running).photoVersion == version)
                        Q_EMIT rendered(picture);
                });
            };
            try {
                return work->draw(request, deliver, [this] { return m_job.isCanceled(); });
            } catch (const std::bad_alloc &) {
                deliver(failure(request, outOfMemoryText()));
                return false;
            }
        });
    }
    if (isBusy() != m_wasBusy) {
        m_wasBusy = isBusy();
        Q_EMIT busyChanged(m_wasBusy);
    }
}

} // namespace plexa

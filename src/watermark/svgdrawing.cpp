// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/svgdrawing.h"

#include "platform/xmlbounds.h"
#include "raster/bitmaputilities.h"
#include "watermark/stoppablecanvas.h"
#include "watermark/svgcheck.h"
#include "watermark/watermarkbitmap.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QSvgRenderer>
#include <QXmlStreamReader>

#include <pthread.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <ctime>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>

namespace plexa
{
namespace
{

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(plexa::WatermarkPicture)
};

/// Programs write some dozens.
constexpr int kMaxAttributes = 200;

/// The interval at which the caller checks the time and whether it is canceled.
constexpr std::chrono::milliseconds kWait(20);

/// Ends early when it is stopped, so that a parser stops, too.
class StoppableBytes final : public QBuffer
{
public:
    StoppableBytes(const QByteArray &bytes, const std::atomic_bool &isStopped)
        : m_isStopped(isStopped)
    {
        setData(bytes);
        open(ReadOnly);
    }

protected:
    qint64 readData(char *data, qint64 size) override
    {
        return m_isStopped ? -1 : QBuffer::readData(data, size);
    }

private:
    const std::atomic_bool &m_isStopped;
};

bool loadRenderer(QSvgRenderer &renderer, const QByteArray &svg, const std::atomic_bool &isStopped)
{
    // An animation's timer would need an event loop; a watermark shows the first moment.
    renderer.setFramesPerSecond(0);
    StoppableBytes bytes(svg, isStopped);
    QXmlStreamReader xml(&bytes);
    return renderer.load(&xml) && renderer.isValid();
}

Result<SvgDrawing> checked(const QByteArray &svg, const std::atomic_bool &isStopped)
{
    const Result<QByteArray> bounded = boundedXml(svg, kMaxAttributes);
    if (!bounded)
        return tl::unexpected(bounded.error());
    StoppableBytes bytes(*bounded, isStopped);
    if (const QString fault = faultOfSvg(bytes); !fault.isEmpty())
        return fail(fault);
    QSvgRenderer renderer;
    if (!loadRenderer(renderer, *bounded, isStopped))
        return fail(Texts::tr("the SVG drawing cannot be read"));
    // In user units, unlike the default size not cut to whole ones.
    QSizeF size = renderer.viewBoxF().size();
    if (size.isEmpty())
        size = renderer.defaultSize();
    if (!(size.width() > 0 && size.height() > 0) || !std::isfinite(size.width() * size.height()))
        return fail(Texts::tr("the SVG drawing has no size"));
    return SvgDrawing{*bounded, size};
}

Result<QImage> rendered(const QByteArray &svg, QSize size, double tilt, const std::atomic_bool &isStopped)
{
    QSvgRenderer renderer;
    const QSizeF box = tiltedBox(size, tilt);
    QImage image = createBitmapContext(static_cast<int>(box.width()), static_cast<int>(box.height()), true);
    if (image.isNull())
        return fail(Texts::tr("there is not enough memory for it"));
    if (!loadRenderer(renderer, svg, isStopped))
        return fail(Texts::tr("the SVG drawing cannot be read"));
    StoppableCanvas canvas(image, isStopped);
    QPainter painter(&canvas);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform |
                           QPainter::TextAntialiasing);
    if (tilt != 0)
        painter.setTransform(tiltIntoBox(size, tilt));
    renderer.render(&painter, QRectF(QPointF(), QSizeF(size)));
    painter.end();
    return image;
}

/// Counts the threads, whose callers may no longer wait for them.
struct Running {
    std::mutex lock;
    std::condition_variable ended;
    int count = 0; // guarded by lock

    void add(int threads)
    {
        const std::lock_guard guard(lock);
        count += threads;
        ended.notify_all();
    }
};

/// Keeps the process from ending under such a thread, for some time: it stops at its next operation.
class RunningAtExit
{
public:
    ~RunningAtExit()
    {
        std::unique_lock guard(threads->lock);
        threads->ended.wait_for(guard, std::chrono::seconds(kMaxSvgSeconds),
                                [this] { return threads->count == 0; });
    }

    const std::shared_ptr<Running> threads = std::make_shared<Running>();
};

/// A task, its result, and what caller and thread share.
template<class Value>
struct Job {
    std::function<Result<Value>(const std::atomic_bool &isStopped)> task;
    std::atomic_bool isStopped = false;
    std::mutex lock;
    std::condition_variable ended;
    std::optional<Result<Value>> result; // guarded by lock
    clockid_t clock{};                   // guarded by lock; valid until there is a result
    bool isStarted = false;              // guarded by lock

    void run()
    {
        {
            const std::lock_guard guard(lock);
            isStarted = pthread_getcpuclockid(pthread_self(), &clock) == 0;
        }
        Result<Value> done = task(isStopped);
        const std::lock_guard guard(lock);
        result = std::move(done);
        ended.notify_all();
    }

    /// Needs the lock, without a result.
    bool isTimeUp() const
    {
        timespec used{};
        return isStarted && clock_gettime(clock, &used) == 0 && used.tv_sec >= kMaxSvgSeconds;
    }
};

template<class Value>
Result<Value> withinTime(std::function<Result<Value>(const std::atomic_bool &isStopped)> task,
                         const CancelCheck &isCanceled)
{
    static const RunningAtExit running;
    const auto job = std::make_shared<Job<Value>>();
    job->task = std::move(task);
    try {
        std::thread([job, threads = running.threads] {
            threads->add(1);
            job->run();
            threads->add(-1);
        }).detach();
    } catch (const std::system_error &) {
        return fail(Texts::tr("no thread can be started to draw it"));
    }
    std::unique_lock lock(job->lock);
    while (!job->ended.wait_for(lock, kWait, [&] { return job->result.has_value(); })) {
        const bool isTimeUp = job->isTimeUp();
        if (!isTimeUp && !canceled(isCanceled))
            continue;
        job->isStopped = true;
        return fail(isTimeUp
                        ? Texts::tr("the SVG drawing takes more than %1 seconds to draw").arg(kMaxSvgSeconds)
                        : canceledText());
    }
    return std::move(*job->result);
}

} // namespace

Result<SvgDrawing> checkedSvg(const QByteArray &svg)
{
    return withinTime<SvgDrawing>(
        [svg](const std::atomic_bool &isStopped) { return checked(svg, isStopped); }, {});
}

Result<QImage> renderedSvg(const QByteArray &svg, QSize size, double tilt, const CancelCheck &isCanceled)
{
    return withinTime<QImage>(
        [=](const std::atomic_bool &isStopped) { return rendered(svg, size, tilt, isStopped); }, isCanceled);
}

} // namespace plexa

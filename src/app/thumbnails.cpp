// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/thumbnails.h"

#include "raster/resampling.h"
#include "watermark/screenmarks.h"

#include <algorithm>
#include <chrono>
#include <mutex>
#include <new>
#include <optional>
#include <thread>
#include <utility>

namespace plexa
{
namespace
{

/// What the pictures of photos that are not visible may take.
constexpr qint64 kMaxBytes = 96 << 20;

/// While the user changes something, the visible pictures need all the time that there is.
constexpr std::chrono::milliseconds kQuiet(200);

/// The size, halved while its longer side stays at least `side`.
QSize halvedTo(QSize size, int side)
{
    while (std::max(size.width(), size.height()) / 2 >= std::max(side, 1))
        size = QSize(std::max(1, size.width() / 2), std::max(1, size.height() / 2));
    return size;
}

} // namespace

/// The orders that wait and those in work. Any thread.
class Thumbnails::Queue
{
public:
    void replace(std::vector<Order> orders)
    {
        const std::lock_guard lock(m_mutex);
        std::erase_if(orders, [this](const Order &order) {
            return std::any_of(m_running.begin(), m_running.end(), [&order](const Running &running) {
                return running.photo == order.photo.get() && running.version == order.version;
            });
        });
        std::swap(m_waiting, orders); // the former ones are destroyed by the caller
        m_next = 0;
    }

    bool isEmpty() const
    {
        const std::lock_guard lock(m_mutex);
        return m_next == m_waiting.size();
    }

    std::optional<Order> begin()
    {
        const std::lock_guard lock(m_mutex);
        if (m_next == m_waiting.size())
            return std::nullopt;
        Order order = std::move(m_waiting[m_next++]); // no copy: photos are destroyed on the main thread
        m_running.push_back({order.photo.get(), order.version});
        return order;
    }

    void end(const Order &order)
    {
        const std::lock_guard lock(m_mutex);
        std::erase_if(m_running,
                      [&order](const Running &running) { return running.photo == order.photo.get(); });
    }

private:
    struct Running {
        const ImageObject *photo;
        Version version;
    };

    mutable std::mutex m_mutex;
    std::vector<Order> m_waiting;
    std::size_t m_next = 0; // of m_waiting
    std::vector<Running> m_running;
};

Thumbnails::Thumbnails(const FontCatalog &fonts, int threads, Photos photos)
    : m_fonts(fonts)
    , m_threads(threads)
    , m_photos(photos)
    , m_presets(std::make_shared<std::vector<AppliedPreset>>())
    , m_queue(std::make_unique<Queue>())
{
    m_quiet.setSingleShot(true);
    m_quiet.setInterval(kQuiet);
    connect(&m_quiet, &QTimer::timeout, this, &Thumbnails::update);
    connect(&m_job, &BackgroundJob::ended, this, &Thumbnails::update);
}

Thumbnails::~Thumbnails()
{
    m_queue->replace({});
}

void Thumbnails::setPresets(std::vector<AppliedPreset> presets)
{
    const auto isSame = [](const AppliedPreset &one, const AppliedPreset &other) {
        return one.preset == other.preset && one.values == other.values;
    };
    if (std::equal(presets.begin(), presets.end(), m_presets->begin(), m_presets->end(), isSame))
        return;
    const bool drew = draws();
    m_presets = std::make_shared<std::vector<AppliedPreset>>(std::move(presets));
    ++m_presetsVersion;
    if (drew && !draws()) {
        for (Entry &entry : m_entries)
            entry.picture = {};
        for (const std::shared_ptr<ImageObject> &photo : m_wanted.visible)
            Q_EMIT changed(photo.get());
    }
    m_quiet.start();
    scheduleUpdate();
}

void Thumbnails::setWanted(Wanted wanted)
{
    const Wanted former = std::exchange(m_wanted, std::move(wanted)); // of which some are forgotten below
    const qint64 bytesOfOne = std::max<qint64>(1, qint64(4) * m_wanted.side * m_wanted.side);
    const auto nVisible = static_cast<qint64>(m_wanted.visible.size());
    const auto nOthers = std::max<qint64>(0, kMaxBytes / bytesOfOne - nVisible);
    if (static_cast<qint64>(m_wanted.others.size()) > nOthers)
        m_wanted.others.resize(static_cast<std::size_t>(nOthers));
    forgetUnwanted();
    for (const ImageList *const list : {&m_wanted.visible, &m_wanted.others})
        std::for_each(list->begin(), list->end(), [this](const auto &photo) { watch(photo); });
    m_quiet.start();
    scheduleUpdate();
}

void Thumbnails::forgetUnwanted()
{
    QHash<const ImageObject *, Entry> kept;
    for (const ImageList *const list : {&m_wanted.visible, &m_wanted.others}) {
        for (const std::shared_ptr<ImageObject> &photo : *list) {
            if (const auto entry = m_entries.find(photo.get()); entry != m_entries.end())
                kept.insert(photo.get(), std::move(*entry));
        }
    }
    for (auto entry = m_entries.cbegin(); entry != m_entries.cend(); ++entry) {
        if (!kept.contains(entry.key()))
            entry.key()->disconnect(this);
    }
    m_entries.swap(kept);
}

/// The wanted photos are kept alive by the lists.
void Thumbnails::watch(const std::shared_ptr<ImageObject> &photo)
{
    if (m_entries.contains(photo.get()))
        return;
    m_entries.insert(photo.get(), {});
    const auto outdated = [this, photo = photo.get()] { outdate(photo); };
    // From any thread, for this one.
    connect(photo.get(), &ImageObject::metadataChanged, this, outdated);
    connect(photo.get(), &ImageObject::pathChanged, this, outdated);
    connect(photo.get(), &ImageObject::customWatermarkRectOriginsChanged, this, outdated);
}

void Thumbnails::outdate(const ImageObject *photo)
{
    const auto entry = m_entries.find(photo);
    if (entry == m_entries.end())
        return;
    ++entry->photoVersion;
    if (entry->picture.isNull())
        Q_EMIT changed(photo); // the bare thumbnail may be another one
    scheduleUpdate();
}

QImage Thumbnails::thumbnail(const ImageObject &photo) const
{
    const auto entry = m_entries.find(&photo);
    if (entry != m_entries.end() && !entry->picture.isNull())
        return entry->picture;
    return m_photos == Photos::Loaded ? photo.thumbnail() : QImage();
}

bool Thumbnails::isIdle() const
{
    return !m_isUpdateQueued && !m_quiet.isActive() && !m_job.isRunning();
}

/// Once for many changes, from the event loop.
void Thumbnails::scheduleUpdate()
{
    if (!std::exchange(m_isUpdateQueued, true))
        QTimer::singleShot(0, this, [this] {
            m_isUpdateQueued = false;
            update();
        });
}

void Thumbnails::update()
{
    std::vector<Order> orders = outdated(m_wanted.visible);
    if (orders.empty() && !m_quiet.isActive() && m_photos == Photos::Loaded)
        orders = outdated(m_wanted.others);
    m_queue->replace(std::move(orders));
    if (!m_queue->isEmpty())
        start();
}

/// The orders for the photos whose pictures are not up to date. Those with the oldest pictures come first, so
/// that all follow a slider.
std::vector<Thumbnails::Order> Thumbnails::outdated(const ImageList &photos) const
{
    std::vector<Order> orders;
    std::vector<std::pair<int, std::size_t>> ages; // version of the presets, index
    if (!draws())
        return orders;
    for (std::size_t i = 0; i < photos.size(); ++i) {
        const Entry &entry = *m_entries.find(photos[i].get());
        const Version wanted{m_presetsVersion, entry.photoVersion, m_wanted.side};
        if (entry.version != wanted && (m_photos == Photos::LoadedForThis || photos[i]->isLoaded()))
            ages.emplace_back(entry.version.presets, i);
    }
    std::sort(ages.begin(), ages.end());
    for (const auto &[age, i] : ages) {
        const int photoVersion = m_entries.find(photos[i].get())->photoVersion;
        orders.push_back({photos[i], m_presets, {m_presetsVersion, photoVersion, m_wanted.side}});
    }
    return orders;
}

void Thumbnails::start()
{
    m_job.start([this] {
        std::vector<std::jthread> workers;
        for (int i = 1; i < m_threads; ++i)
            workers.emplace_back([this] { workOnOrders(); });
        workOnOrders();
        return true;
    });
}

/// Threads of the job.
void Thumbnails::workOnOrders()
{
    while (std::optional<Order> order = m_queue->begin()) {
        QImage picture = m_job.isCanceled() ? QImage() : drawn(*order);
        m_queue->end(*order);
        m_job.post(
            [this, order = std::move(*order), picture = std::move(picture)] { deliver(order, picture); });
    }
}

/// Null if there is no thumbnail.
QImage Thumbnails::drawn(const Order &order) const
{
    const CancelCheck isCanceled = [this] { return m_job.isCanceled(); };
    try {
        if (m_photos == Photos::LoadedForThis &&
            order.photo->tryLoadImageFromDisk() != ImageObject::LoadOutcome::Loaded)
            return {};
        const PhotoSnapshot photo = order.photo->thumbnailSnapshot();
        if (photo.pixels.isNull())
            return {};
        const QSize size = halvedTo(photo.pixels.size(), order.version.side);
        QImage picture = resampled(photo.pixels, size, Quality::Low, isCanceled).mirrored();
        std::vector<MarkOrder> marks;
        for (const AppliedPreset &preset : *order.presets)
            marks.push_back({preset.values, photo.customOrigins.originFor(preset.preset.get())});
        ScreenMarks(m_fonts).draw(picture, {}, size, photo.facts, marks, isCanceled);
        return canceled(isCanceled) ? QImage() : picture.mirrored();
    } catch (const std::bad_alloc &) {
        return {};
    }
}

void Thumbnails::deliver(const Order &order, const QImage &picture)
{
    const auto entry = m_entries.find(order.photo.get());
    if (entry == m_entries.end() || order.version.presets < entry->version.presets ||
        (order.version.presets == entry->version.presets && order.version.photo < entry->version.photo))
        return;
    entry->version = order.version;
    if (picture.isNull() || !draws())
        return;
    entry->picture = picture;
    Q_EMIT changed(order.photo.get());
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/presetpictures.h"

#include "raster/resampling.h"
#include "watermark/screenmarks.h"

#include <QLinearGradient>
#include <QPainter>

#include <algorithm>
#include <chrono>
#include <new>

namespace plexa
{
namespace
{

constexpr qsizetype kMaxPictures = 300;

/// While a slider moves or photos are browsed, the preview needs all the time that there is.
constexpr std::chrono::milliseconds kQuiet(200);

constexpr QSize kPlainPhoto(3000, 2000);
constexpr QSize kPlainThumbnail(390, 260);

// Of the photo's sides that a picture shows at least.
constexpr double kLeastShare = 0.35;
constexpr double kLeastShareOfTiles = 0.6;
constexpr double kMostShareOfText = 0.5;

QImage plainGround(QSize size)
{
    QImage ground(size, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&ground);
    QLinearGradient sky(0, 0, 0, size.height());
    sky.setColorAt(0, QColor(0x6f, 0x86, 0x9c));
    sky.setColorAt(1, QColor(0x3d, 0x4a, 0x57));
    painter.fillRect(ground.rect(), sky);
    return ground;
}

/// The part of a photo that shows its mark large enough, in shares of the photo, origin at the top left. It
/// has the shape of the photo.
QRectF partAround(const QRectF &mark, double leastShare)
{
    constexpr double kMargin = 1.15;
    const QRectF whole(0, 0, 1, 1);
    const QRectF visible = mark.intersected(whole);
    const double share = std::max({leastShare, kMargin * visible.width(), kMargin * visible.height()});
    if (visible.isEmpty() || share >= 1)
        return whole;
    const QPointF corner = visible.center() - QPointF(share, share) / 2;
    return {std::clamp(corner.x(), 0.0, 1 - share), std::clamp(corner.y(), 0.0, 1 - share), share, share};
}

/// The side of a wide box on which its text is: a box is often much wider than its text.
QRectF textIn(QRectF box, const WPresetValues &values)
{
    const bool isUpright = values.angle == 0.0F && values.rotation == 0;
    const double room = box.width() - kMostShareOfText;
    if (values.type == QLatin1String("Image") || !isUpright || room <= 0 || box.height() > kMostShareOfText)
        return box;
    const int alignment = std::clamp(values.textAlignment.value_or(0), 0, 2);
    box.adjust(room * alignment / 2, 0, -room * (2 - alignment) / 2, 0);
    return box;
}

/// The same for a preset.
/// @param mark   photo pixels, origin at the bottom left
/// @param least  share below which the thumbnail has not enough pixels
QRectF shownPart(const std::optional<QRectF> &mark, QSize photo, const WPresetValues &values, double least)
{
    if (!mark || photo.isEmpty())
        return {0, 0, 1, 1};
    const QRectF shares(mark->x() / photo.width(), 1 - mark->bottom() / photo.height(),
                        mark->width() / photo.width(), mark->height() / photo.height());
    if (values.replicateHorizontal || values.replicateVertical)
        return partAround(shares, std::max(least, kLeastShareOfTiles));
    return partAround(textIn(shares, values), std::max(least, kLeastShare));
}

QRect scaledBy(const QRectF &shares, QSize size)
{
    return QRectF(shares.x() * size.width(), shares.y() * size.height(), shares.width() * size.width(),
                  shares.height() * size.height())
        .toRect();
}

} // namespace

PresetPictures::PresetPictures(const PhotoServices &services)
    : m_services(services)
{
    m_quiet.setSingleShot(true);
    m_quiet.setInterval(kQuiet);
    connect(&m_quiet, &QTimer::timeout, this, &PresetPictures::update);
    connect(&m_job, &BackgroundJob::ended, this, [this] {
        m_photoInWork.reset();
        update();
    });
}

void PresetPictures::setPhoto(const std::shared_ptr<ImageObject> &photo)
{
    if (photo == m_photo)
        return;
    if (m_photo)
        m_photo->disconnect(this);
    m_photo = photo;
    if (m_photo) { // from any thread, for this one
        connect(m_photo.get(), &ImageObject::metadataChanged, this, &PresetPictures::outdatePhoto);
        connect(m_photo.get(), &ImageObject::pathChanged, this, &PresetPictures::outdatePhoto);
        connect(m_photo.get(), &ImageObject::customWatermarkRectOriginsChanged, this,
                &PresetPictures::outdatePhoto);
    }
    outdatePhoto();
}

void PresetPictures::outdatePhoto()
{
    ++m_photoVersion;
    m_job.cancel();
    outdate();
}

void PresetPictures::setRoom(QSize room)
{
    if (room == m_room)
        return;
    m_room = room;
    outdatePhoto();
}

/// Who shows the pictures asks for them again.
void PresetPictures::outdate()
{
    m_quiet.start();
    Q_EMIT changed();
}

QImage PresetPictures::picture(const std::shared_ptr<WPreset> &preset)
{
    Entry &entry = m_entries[preset.get()];
    if (entry.preset.lock() != preset) { // a new one, perhaps at the address of a deleted one
        entry = {};
        entry.preset = preset;
        connect(preset.get(), &WPreset::fieldChanged, this, [this, key = preset.get()] {
            if (const auto changed = m_entries.find(key); changed != m_entries.end()) {
                ++changed->presetVersion;
                outdate();
            }
        });
    }
    entry.asked = ++m_asked;
    entry.isWanted = entry.drawn != Version{m_photoVersion, entry.presetVersion};
    const QImage picture = entry.picture;
    boundMemory();
    update();
    return picture;
}

/// Forgets the pictures that were not asked for the longest time.
void PresetPictures::boundMemory()
{
    while (m_entries.size() > kMaxPictures) {
        auto oldest = m_entries.begin();
        for (auto entry = m_entries.begin(); entry != m_entries.end(); ++entry) {
            if (entry->asked < oldest->asked)
                oldest = entry;
        }
        if (const auto preset = oldest->preset.lock())
            preset->disconnect(this);
        m_entries.erase(oldest);
    }
}

std::shared_ptr<WPreset> PresetPictures::nextWanted() const
{
    const Entry *last = nullptr;
    for (const Entry &entry : m_entries) {
        if (entry.isWanted && (!last || entry.asked > last->asked) && !entry.preset.expired())
            last = &entry;
    }
    return last ? last->preset.lock() : nullptr;
}

void PresetPictures::update()
{
    if (m_quiet.isActive() || m_job.isRunning())
        return;
    const std::shared_ptr<WPreset> preset = nextWanted();
    if (!preset)
        return;
    m_photoInWork = m_photo;
    const Version version{m_photoVersion, m_entries.value(preset.get()).presetVersion};
    m_job.start([this, order = AppliedPreset{preset, preset->values()}, version, photo = m_photo.get(),
                 room = m_room] {
        const QImage picture = drawn(order, photo, room);
        m_job.post([this, version, picture, key = order.preset.get()] { deliver(key, version, picture); });
        return true;
    });
}

/// Null if there is no thumbnail. Thread of the job.
QImage PresetPictures::drawn(const AppliedPreset &preset, ImageObject *photo, QSize room) const
{
    const CancelCheck isCanceled = [this] { return m_job.isCanceled(); };
    try {
        PhotoSnapshot snapshot;
        if (photo)
            snapshot = photo->thumbnailSnapshot();
        else
            snapshot = {PhotoFacts({}, ImageMetadata(), kPlainPhoto, kPlainPhoto, m_services.locale),
                        {},
                        plainGround(kPlainThumbnail)};
        if (snapshot.pixels.isNull())
            return {};
        const QSize whole = snapshot.pixels.size();
        const QSize shown = whole.scaled(room, Qt::KeepAspectRatio).boundedTo(whole).expandedTo({1, 1});
        const std::vector<MarkOrder> orders{
            {preset.values, snapshot.customOrigins.originFor(preset.preset.get())}};
        ScreenMarks marks(m_services.fonts);
        QImage none;
        const auto laidOut = marks.draw(none, {}, shown, snapshot.facts, orders, isCanceled);
        const QRectF part = shownPart(laidOut.firstRect, snapshot.facts.pixelSize(), preset.values,
                                      double(shown.width()) / whole.width());
        // The thumbnail is mirrored top to bottom.
        const QImage thumbnail = snapshot.pixels.mirrored().copy(scaledBy(part, whole));
        QImage picture = resampled(thumbnail, shown, Quality::Low, isCanceled);
        const QSize layer = (QSizeF(shown) / part.width()).toSize();
        marks.draw(picture, scaledBy(part, layer).topLeft(), layer, snapshot.facts, orders, isCanceled);
        return canceled(isCanceled) ? QImage() : picture;
    } catch (const std::bad_alloc &) {
        return {};
    }
}

void PresetPictures::deliver(const WPreset *preset, Version version, const QImage &picture)
{
    const auto entry = m_entries.find(preset);
    if (entry == m_entries.end() || version.photo != m_photoVersion)
        return;
    entry->drawn = version;
    entry->isWanted = version.preset != entry->presetVersion;
    if (!picture.isNull())
        entry->picture = picture;
    Q_EMIT changed();
}

} // namespace plexa

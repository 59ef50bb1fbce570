// SPDX-License-Identifier: GPL-3.0-or-later

#include "images/loadedphoto.h"

#include "imageio/base/reducedrows.h"
#include "imageio/imagesource.h"
#include "images/copywriter.h"
#include "images/filefacts.h"
#include "raster/bitmaputilities.h"

#include <new>
#include <utility>

namespace plexa
{

namespace
{

constexpr int kThumbnailSide = 400;

} // namespace

LoadedPhoto::LoadedPhoto(const QString &path, const PhotoServices &services,
                         std::function<void(const Changes &)> announce)
    : m_services(services)
    , m_announce(std::move(announce))
    , m_key(services.cache.newKey())
    , m_reducedKey(services.cache.newKey())
    , m_path(path)
{
}

LoadedPhoto::~LoadedPhoto()
{
    dropPictures();
}

void LoadedPhoto::dropPictures()
{
    removeCachedPixels();
    m_thumbnail = {};
    m_hasImage = false;
}

QString LoadedPhoto::path() const
{
    const std::lock_guard lock(m_stateLock);
    return m_path;
}

bool LoadedPhoto::setPath(const QString &path)
{
    const std::lock_guard lock(m_stateLock);
    return std::exchange(m_path, path) != path;
}

QString LoadedPhoto::pathToImportFrom() const
{
    const std::lock_guard lock(m_stateLock);
    return m_pathToImportFrom;
}

void LoadedPhoto::setPathToImportFrom(const QString &path)
{
    const std::lock_guard lock(m_stateLock);
    m_pathToImportFrom = path;
}

QString LoadedPhoto::readPath() const
{
    const std::lock_guard lock(m_stateLock);
    return m_pathToImportFrom.isEmpty() ? m_path : m_pathToImportFrom;
}

bool LoadedPhoto::isLoaded() const
{
    const std::lock_guard lock(m_stateLock);
    return m_hasImage && !m_thumbnail.isNull();
}

/// Whether the photo was read, and not released since.
bool LoadedPhoto::hasImage() const
{
    const std::lock_guard lock(m_stateLock);
    return m_hasImage;
}

QString LoadedPhoto::loadError() const
{
    const std::lock_guard lock(m_stateLock);
    return m_loadError;
}

bool LoadedPhoto::load()
{
    if (isLoaded())
        return true;
    if (path().isEmpty())
        return false;
    return loadUnder(std::unique_lock(m_processingLock));
}

LoadedPhoto::LoadOutcome LoadedPhoto::tryLoad()
{
    if (isLoaded())
        return LoadOutcome::Loaded;
    if (path().isEmpty())
        return LoadOutcome::Unreadable;
    std::unique_lock processing(m_processingLock, std::try_to_lock);
    if (!processing.owns_lock())
        return LoadOutcome::Busy;
    return loadUnder(std::move(processing)) ? LoadOutcome::Loaded : LoadOutcome::Unreadable;
}

/// @param processing  the processing lock, held
bool LoadedPhoto::loadUnder(std::unique_lock<std::recursive_mutex> processing)
{
    if (isLoaded()) // by another thread meanwhile
        return true;
    Changes changes;
    bool isLoadedNow = false;
    {
        const std::lock_guard pixels(m_pixelLock);
        isLoadedNow = readPicture(kThumbnailSide, changes).has_value();
    }
    processing.unlock(); // a receiver of the signals may load the photo
    m_announce(changes);
    return isLoadedNow;
}

/// Reads the photo as its file is now and adopts that version. Called with the pixel lock held.
/// @param reducedTo  0 for the full size; else the least pixels of the longer side
Result<QImage> LoadedPhoto::readPicture(int reducedTo, Changes &changes)
{
    Result<QImage> picture;
    for (int attempt = 0; attempt < 2; ++attempt) {
        const Result<ImageSource> source = ImageSource::open(readPath(), m_services.limits);
        if (!source) {
            becomeUnreadable(source.error().text);
            return tl::unexpected(source.error());
        }
        try {
            picture = readVersion(*source, reducedTo, changes);
        } catch (const std::bad_alloc &) {
            picture = fail(outOfMemoryText());
        }
        const Result<void> unchanged = source->checkUnchanged();
        if (unchanged && !picture) {
            const std::lock_guard lock(m_stateLock);
            m_loadError = picture.error().text;
        }
        if (unchanged)
            return picture;
        becomeUnreadable(unchanged.error().text);
        picture = tl::unexpected(unchanged.error());
    }
    return picture;
}

Result<QImage> LoadedPhoto::readVersion(const ImageSource &source, int reducedTo, Changes &changes)
{
    // A thumbnail that was released to save memory is created again on demand only.
    const bool isThumbnailNeeded = reducedTo > 0 || !thumbnail().isNull();
    const Result<Uprighting> adopted = adoptVersionOf(source, changes);
    if (!adopted)
        return tl::unexpected(adopted.error());
    const Uprighting &uprighting = *adopted;
    Result<QImage> picture = m_services.cache.find(m_key);
    if (picture->isNull()) {
        picture = readUprightWithin(m_services.budget, source, uprighting, reducedTo);
        if (!picture && uprightBytes(source, uprighting, reducedTo) > m_services.budget.total())
            return picture; // the file is intact, and a reduced picture or strips of it may fit
    }
    QImage thumbnail = this->thumbnail();
    if (picture && isThumbnailNeeded && thumbnail.isNull()) {
        thumbnail = createImageScaledToMaxSize(*picture, kThumbnailSide, true);
        if (thumbnail.isNull())
            picture = fail(outOfMemoryText());
    }
    if (!picture) {
        becomeUnreadable(picture.error().text);
        return picture;
    }
    if (picture->size() == uprighting.size()) // also of a small photo, which is not reduced
        m_services.cache.insert(m_key, *picture);
    const std::lock_guard lock(m_stateLock);
    m_thumbnail = thumbnail;
    m_hasImage = true;
    m_loadError.clear();
    return picture;
}

/// Adopts the metadata and the geometry of the file unless it is the version that was read before.
Result<Uprighting> LoadedPhoto::adoptVersionOf(const ImageSource &source, Changes &changes)
{
    PhotoVersion::Arrival arrival;
    {
        const std::lock_guard lock(m_stateLock);
        if (m_hasImage && m_file.version() == source.version())
            return m_file.uprighting();
        arrival = m_file.arrivalOf(source.version());
    }
    const Result<QVariantMap> properties = source.properties();
    if (!properties) {
        becomeUnreadable(properties.error().text);
        return tl::unexpected(properties.error());
    }
    const ImageMetadata metadata(*properties);
    const Uprighting uprighting =
        uprightingOf(source.info().rows.size, metadata, arrival.turns, m_services.limits);
    const std::lock_guard lock(m_stateLock);
    dropPictures();
    changes.inMetadata = true;
    if (m_file.adopt(arrival, metadata, uprighting) && m_origins.clear())
        changes.inOrigins = true;
    return uprighting;
}

/// Drops what the file would not give any more; the user's turns, edits and places stay.
void LoadedPhoto::becomeUnreadable(const QString &reason)
{
    const std::lock_guard lock(m_stateLock);
    dropPictures();
    m_loadError = reason;
}

/// The pixels from the cache, else from the file; null when they cannot be read. Called with the pixel lock
/// held.
QImage LoadedPhoto::decodedPixels(Changes &changes)
{
    if (!hasImage())
        return {};
    if (QImage kept = m_services.cache.find(m_key); !kept.isNull())
        return kept;
    return readPicture(0, changes).value_or(QImage());
}

/// Reads a loaded photo again unless its file still has the version that was read.
/// @param version  of the file now
void LoadedPhoto::bringUpToDate(const std::optional<FileVersion> &version)
{
    Changes changes;
    {
        const std::lock_guard pixels(m_pixelLock);
        std::unique_lock lock(m_stateLock);
        const bool isUpToDate = !m_hasImage || version == m_file.version();
        lock.unlock();
        if (isUpToDate)
            return;
        static_cast<void>(readPicture(kThumbnailSide, changes)); // what follows will fail and report why
    }
    m_announce(changes);
}

Result<PhotoSnapshot> LoadedPhoto::readReduced(int minimumSide, const CancelCheck &isCanceled)
{
    Result<QImage> picture;
    for (int attempt = 0; attempt < 2; ++attempt) {
        if (!hasImage() && !load())
            return fail(loadError());
        std::unique_lock lock(m_stateLock);
        const std::optional<FileVersion> version = m_file.version();
        const Uprighting uprighting = m_file.uprighting();
        const int reduction = reductionFor(uprighting.stored, minimumSide);
        PhotoSnapshot result{lockedFacts(), m_origins, cachedReduced(reduction)};
        lock.unlock();
        if (!result.pixels.isNull())
            return result;
        // Without a lock, so that nothing else on the photo waits.
        picture = readReducedVersion({readPath(), version, uprighting}, minimumSide, m_services, isCanceled);
        if (picture) {
            keepReduced(*picture, reduction, uprighting, version);
            result.pixels = *picture;
            return result;
        }
        const std::optional<FileVersion> now = fileVersionAt(readPath());
        if (now == version)
            break;
        bringUpToDate(now);
    }
    return tl::unexpected(picture.error());
}

/// Called with the state lock held.
QImage LoadedPhoto::cachedReduced(int reduction) const
{
    if (reduction == 1)
        return m_services.cache.find(m_key);
    return reduction == m_reduction ? m_services.cache.find(m_reducedKey) : QImage();
}

/// Caches the picture unless another thread works on the photo or has changed it meanwhile.
void LoadedPhoto::keepReduced(const QImage &picture, int reduction, const Uprighting &uprighting,
                              const std::optional<FileVersion> &version)
{
    const std::unique_lock pixels(m_pixelLock, std::try_to_lock);
    if (!pixels.owns_lock())
        return;
    const std::lock_guard lock(m_stateLock);
    if (!m_hasImage || m_file.version() != version || m_file.uprighting() != uprighting)
        return;
    m_services.cache.insert(reduction == 1 ? m_key : m_reducedKey, picture);
    if (reduction != 1)
        m_reduction = reduction;
}

PhotoSnapshot LoadedPhoto::snapshot()
{
    if (!hasImage())
        load();
    Changes changes;
    std::unique_lock pixelLock(m_pixelLock);
    const QImage picture = decodedPixels(changes);
    std::unique_lock lock(m_stateLock);
    const PhotoSnapshot result{lockedFacts(), m_origins, picture};
    lock.unlock();
    pixelLock.unlock();
    m_announce(changes);
    return result;
}

Result<PhotoFacts> LoadedPhoto::readFacts() const
{
    {
        const std::lock_guard lock(m_stateLock);
        if (m_hasImage)
            return lockedFacts();
    }
    const auto metadataOf = [this](const ImageMetadata &inFile) {
        const std::lock_guard lock(m_stateLock);
        return m_file.metadata().value_or(m_file.edited(inFile));
    };
    return readFactsOfFile(readPath(), path(), metadataOf, m_services);
}

void LoadedPhoto::release()
{
    const std::lock_guard processing(m_processingLock);
    const std::lock_guard pixels(m_pixelLock);
    const std::lock_guard lock(m_stateLock);
    dropPictures();
    m_file.forget();
}

void LoadedPhoto::releasePictures(Pictures which)
{
    const std::unique_lock processing(m_processingLock, std::try_to_lock);
    const std::unique_lock pixels(m_pixelLock, std::try_to_lock);
    if (!processing.owns_lock() || !pixels.owns_lock())
        return;
    const std::lock_guard lock(m_stateLock);
    m_thumbnail = {};
    if (which == Pictures::All)
        removeCachedPixels();
}

PhotoFacts LoadedPhoto::facts() const
{
    const std::lock_guard lock(m_stateLock);
    return lockedFacts();
}

/// Called with the state lock held.
PhotoFacts LoadedPhoto::lockedFacts() const
{
    return PhotoFacts(m_path, m_file.metadata().value_or(ImageMetadata()), m_file.uprighting().size(),
                      m_file.uprighting().unscaledSize(), m_services.locale);
}

QImage LoadedPhoto::cachedPixels() const
{
    return m_services.cache.find(m_key);
}

QImage LoadedPhoto::thumbnail() const
{
    const std::lock_guard lock(m_stateLock);
    return m_thumbnail;
}

PhotoSnapshot LoadedPhoto::thumbnailSnapshot() const
{
    const std::lock_guard lock(m_stateLock);
    return {lockedFacts(), m_origins, m_thumbnail};
}

std::optional<ImageMetadata> LoadedPhoto::metadata() const
{
    const std::lock_guard lock(m_stateLock);
    return m_file.metadata();
}

void LoadedPhoto::setMetadataEdit(const MetadataEdit &edit)
{
    const std::lock_guard lock(m_stateLock);
    m_file.setEdit(edit);
}

void LoadedPhoto::setMetadata(const ImageMetadata &metadata)
{
    {
        const std::lock_guard lock(m_stateLock);
        m_file.setMetadata(metadata);
    }
    m_announce({.inMetadata = true});
}

bool LoadedPhoto::turn(ImageTransform transform)
{
    std::unique_lock pixels(m_pixelLock, std::defer_lock);
    do { // another thread may release the photo before its pixels are locked
        if (pixels.owns_lock())
            pixels.unlock();
        if (!load())
            return false;
        pixels.lock();
    } while (!isLoaded());
    const QImage turned = turnedThumbnail(thumbnail(), transform);
    if (turned.isNull() || !turnCachedPhoto(m_services.cache, m_key, transform))
        return false;
    Changes changes;
    {
        const std::lock_guard lock(m_stateLock);
        m_services.cache.remove(m_reducedKey);
        changes.inOrigins = m_origins.clear();
        m_thumbnail = turned;
        m_file.turn(transform);
    }
    pixels.unlock();
    m_announce(changes);
    return true;
}

PhotoVersion::Edits LoadedPhoto::pendingEdits() const
{
    const std::lock_guard lock(m_stateLock);
    return m_file.pendingEdits();
}

void LoadedPhoto::restoreTurns(int orientation)
{
    const std::lock_guard lock(m_stateLock);
    m_file.restoreTurns(orientation);
}

std::optional<QPointF> LoadedPhoto::originFor(const WPreset *preset) const
{
    const std::lock_guard lock(m_stateLock);
    return m_origins.originFor(preset);
}

bool LoadedPhoto::editOrigins(const std::function<bool(CustomOrigins &)> &edit)
{
    std::unique_lock lock(m_stateLock);
    const bool isChanged = edit(m_origins);
    lock.unlock();
    m_announce({.inOrigins = isChanged});
    return isChanged;
}

Result<CopyReport> LoadedPhoto::writeCopyOf(const std::optional<FileVersion> &version, CopyOrder order,
                                            const std::vector<AppliedPreset> &presets)
{
    bool isOverwriting = false;
    std::optional<int> before;
    {
        const std::lock_guard pixels(m_pixelLock);
        const std::lock_guard lock(m_stateLock);
        for (const AppliedPreset &preset : presets)
            order.marks.push_back({preset.values, m_origins.originFor(preset.preset.get())});
        const PhotoVersion::Edits edits = m_file.editsOf(version);
        order.metadata = edits.metadata;
        order.metadataEdit = m_file.edit();
        order.turns = edits.turns;
        if (m_hasImage)
            order.version = version;
        if (m_hasImage && version == m_file.version())
            order.upright = cachedPixels();
        isOverwriting = m_hasImage && order.overwritten;
        if (isOverwriting) // before the copy is there, because other threads may read it at once
            before = m_file.beginOverwriting(version);
    }
    Result<CopyReport> report = writeCopy(order, m_services);
    if (!report && isOverwriting) {
        const std::lock_guard lock(m_stateLock);
        m_file.cancelOverwriting(before);
    }
    return report;
}

} // namespace plexa

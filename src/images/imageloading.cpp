// SPDX-License-Identifier: GPL-3.0-or-later

// How a photo comes from its file into memory, and keeps in step with the file.

#include "imageio/imagesource.h"
#include "images/imageobject.h"
#include "raster/bitmaputilities.h"

#include <new>

namespace plexa
{

namespace
{

constexpr int kThumbnailSide = 400;

} // namespace

bool ImageObject::loadImageFromDisk()
{
    if (isLoaded())
        return true;
    if (path().isEmpty())
        return false;
    return loadUnder(std::unique_lock(m_processingLock));
}

ImageObject::LoadOutcome ImageObject::tryLoadImageFromDisk()
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
bool ImageObject::loadUnder(std::unique_lock<std::recursive_mutex> processing)
{
    if (isLoaded()) // another thread was quicker
        return true;
    bool hasNewMetadata = false;
    bool isLoadedNow = false;
    {
        const std::lock_guard pixels(m_pixelLock);
        isLoadedNow = readPicture(kThumbnailSide, hasNewMetadata).has_value();
    }
    processing.unlock();
    // Whoever hears of it may ask for the photo, so nothing is locked any more.
    if (hasNewMetadata)
        Q_EMIT metadataChanged();
    return isLoadedNow;
}

/// Reads the photo as its file is now, and brings everything in step with that. Called with the pixel lock
/// held.
/// @param reducedTo  0 for the full size; else a size that will do, for making the thumbnail
Result<QImage> ImageObject::readPicture(int reducedTo, bool &hasNewMetadata)
{
    Result<QImage> picture;
    for (int attempt = 0; attempt < 2; ++attempt) {
        const Result<ImageSource> source = ImageSource::open(readPath(), m_services.limits);
        if (!source) {
            becomeUnreadable(source.error().text);
            return tl::unexpected(source.error());
        }
        try {
            picture = readVersion(*source, reducedTo, hasNewMetadata);
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

Result<QImage> ImageObject::readVersion(const ImageSource &source, int reducedTo, bool &hasNewMetadata)
{
    const Look look = lookAt(source);
    // One that was given up for the memory's sake stays away until it is asked for.
    const bool isThumbnailNeeded = reducedTo > 0 || !thumbnail().isNull();
    if (look.isNew) {
        hasNewMetadata = true;
        takeOver(look);
    }
    Result<QImage> picture = m_services.cache.find(m_key);
    if (picture->isNull()) {
        picture = readUprightWithin(m_services.budget, source, look.uprighting, reducedTo);
        if (!picture && uprightBytes(source, look.uprighting, reducedTo) > m_services.budget.total())
            return picture; // the photo is whole, and less of it at once may fit
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
    // A format that cannot be decoded smaller has just given the whole photo.
    if (picture->size() == look.uprighting.size())
        m_services.cache.insert(m_key, *picture);
    const std::lock_guard lock(m_stateLock);
    m_originalThumbnail = thumbnail;
    m_imageHasBeenLoaded = true;
    m_hasImage = true;
    m_loadError.clear();
    return picture;
}

ImageObject::Look ImageObject::lookAt(const ImageSource &source) const
{
    Look look;
    look.version = source.version();
    {
        const std::lock_guard lock(m_stateLock);
        look.isNew = !m_hasImage || look.version != m_version;
        look.isOwnCopy = m_turnsOfOwnCopy && look.version != m_version;
        look.uprighting = m_uprighting;
        // The turns that are in the file already are not made again, those since then are.
        look.turns =
            look.isOwnCopy ? composedOrientation(inverseOrientation(*m_turnsOfOwnCopy), m_turns) : m_turns;
    }
    if (look.isNew) {
        look.metadata = ImageMetadata(source.properties());
        look.uprighting =
            uprightingOf(source.info().rows.size, *look.metadata, look.turns, m_services.limits);
    }
    return look;
}

void ImageObject::takeOver(const Look &look)
{
    m_services.cache.remove(m_key);
    const std::lock_guard lock(m_stateLock);
    if (look.isOwnCopy) {
        m_original = {m_version, m_metadata, m_turns};
        m_turnsOfOwnCopy.reset();
        m_isMetadataEdited = false;
    }
    if (m_isMetadataEdited)
        m_metadata->setOrientation(look.metadata->orientationCorrected());
    else
        m_metadata = look.metadata;
    if (m_version && m_uprighting.size() != look.uprighting.size())
        m_customWatermarkRectOrigins.clear();
    m_version = look.version;
    m_uprighting = look.uprighting;
    m_turns = look.turns;
    m_originalThumbnail = {};
    m_hasImage = false;
}

/// Nothing of the photo is shown any more that its file would not give. What the user did stays.
void ImageObject::becomeUnreadable(const QString &reason)
{
    m_services.cache.remove(m_key);
    const std::lock_guard lock(m_stateLock);
    m_originalThumbnail = {};
    m_hasImage = false;
    m_loadError = reason;
}

/// The pixels from the cache, else from the file; null when they cannot be had. Called with the pixel lock
/// held.
QImage ImageObject::decodedPixels(bool &hasNewMetadata)
{
    if (!hasImage())
        return {};
    if (QImage kept = m_services.cache.find(m_key); !kept.isNull())
        return kept;
    return readPicture(0, hasNewMetadata).value_or(QImage());
}

/// Brings a loaded photo in step with its file.
/// @param version  of the file
void ImageObject::lookAgainUnlessAt(const std::optional<FileVersion> &version)
{
    bool hasNewMetadata = false;
    {
        const std::lock_guard pixels(m_pixelLock);
        std::unique_lock lock(m_stateLock);
        const bool isInStep = !m_hasImage || version == m_version;
        lock.unlock();
        if (isInStep)
            return;
        static_cast<void>(readPicture(kThumbnailSide, hasNewMetadata)); // a copy will fail and say why
    }
    if (hasNewMetadata)
        Q_EMIT metadataChanged();
}

} // namespace plexa

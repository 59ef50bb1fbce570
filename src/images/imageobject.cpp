// SPDX-License-Identifier: GPL-3.0-or-later

#include "images/imageobject.h"

#include "imageio/imagesource.h"
#include "platform/filenames.h"
#include "platform/fileversion.h"
#include "raster/bitmaputilities.h"
#include "watermark/watermarkdrawing.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <new>

namespace plexa
{

namespace
{

QImage turnedPhoto(const QImage &photo, ImageTransform transform)
{
    switch (transform) {
    case ImageTransform::RotateClockwise:
        return createImageRotatedByQuarter(photo, true);
    case ImageTransform::RotateCounterClockwise:
        return createImageRotatedByQuarter(photo, false);
    case ImageTransform::RotateHalf:
        return createImageRotatedByHalf(photo);
    case ImageTransform::MirrorLeftRight:
        return createImageFlipped(photo, false);
    case ImageTransform::MirrorTopBottom:
        return createImageFlipped(photo, true);
    }
    return {};
}

/// The thumbnail is stored mirrored top to bottom, so its quarter turns go the other way round.
QImage turnedThumbnail(const QImage &thumbnail, ImageTransform transform)
{
    switch (transform) {
    case ImageTransform::RotateClockwise:
        return turnedPhoto(thumbnail, ImageTransform::RotateCounterClockwise);
    case ImageTransform::RotateCounterClockwise:
        return turnedPhoto(thumbnail, ImageTransform::RotateClockwise);
    default:
        return turnedPhoto(thumbnail, transform);
    }
}

} // namespace

ImageObject::ImageObject(const QString &path, const PhotoServices &services)
    : m_services(services)
    , m_key(services.cache.newKey())
    , m_path(path)
{
}

ImageObject::~ImageObject()
{
    m_services.cache.remove(m_key);
}

QString ImageObject::path() const
{
    const std::lock_guard lock(m_stateLock);
    return m_path;
}

void ImageObject::setPath(const QString &path)
{
    {
        const std::lock_guard lock(m_stateLock);
        if (m_path == path)
            return;
        m_path = path;
    }
    Q_EMIT pathChanged();
}

QString ImageObject::filename() const
{
    return filenameOf(path());
}

void ImageObject::setFilename(const QString &filename)
{
    const QFileInfo info(path());
    const QString extension = fileExtensionOf(path());
    const QString name = extension.isEmpty() ? filename : filename + QLatin1Char('.') + extension;
    setPath(info.path() == QLatin1String(".") ? name : QDir(info.path()).filePath(name));
}

QString ImageObject::pathToImportFrom() const
{
    const std::lock_guard lock(m_stateLock);
    return m_pathToImportFrom;
}

void ImageObject::setPathToImportFrom(const QString &path)
{
    const std::lock_guard lock(m_stateLock);
    m_pathToImportFrom = path;
}

QString ImageObject::readPath() const
{
    const std::lock_guard lock(m_stateLock);
    return m_pathToImportFrom.isEmpty() ? m_path : m_pathToImportFrom;
}

bool ImageObject::isLoaded() const
{
    const std::lock_guard lock(m_stateLock);
    return m_hasImage && !m_originalThumbnail.isNull();
}

/// Was the photo found readable, and not released since?
bool ImageObject::hasImage() const
{
    const std::lock_guard lock(m_stateLock);
    return m_hasImage;
}

bool ImageObject::imageHasBeenLoaded() const
{
    const std::lock_guard lock(m_stateLock);
    return m_imageHasBeenLoaded;
}

QString ImageObject::loadError() const
{
    const std::lock_guard lock(m_stateLock);
    return m_loadError;
}

Result<PhotoFacts> ImageObject::readFacts() const
{
    if (hasImage())
        return facts();
    try {
        const Result<ImageSource> source = ImageSource::open(readPath(), m_services.limits);
        if (!source)
            return tl::unexpected(source.error());
        const ImageMetadata inFile(source->properties());
        const Uprighting uprighting = uprightingOf(source->info().rows.size, inFile, 1, m_services.limits);
        return PhotoFacts(path(), metadata().value_or(inFile), uprighting.size(), uprighting.unscaledSize(),
                          m_services.locale);
    } catch (const std::bad_alloc &) {
        return fail(outOfMemoryText());
    }
}

QImage ImageObject::imageAtHand() const
{
    return m_services.cache.find(m_key);
}

QImage ImageObject::originalCGImage()
{
    return snapshot(Pixels::Needed).pixels;
}

ImageObject::Snapshot ImageObject::snapshot(Pixels pixels)
{
    if (pixels == Pixels::Needed && !hasImage())
        loadImageFromDisk();
    bool hasNewMetadata = false;
    std::unique_lock pixelLock(m_pixelLock);
    const QImage picture = pixels == Pixels::Needed ? decodedPixels(hasNewMetadata) : QImage();
    const PhotoFacts current = facts();
    std::unique_lock lock(m_stateLock);
    const Snapshot result{current, m_customWatermarkRectOrigins, picture};
    lock.unlock();
    pixelLock.unlock();
    if (hasNewMetadata)
        Q_EMIT metadataChanged();
    return result;
}

QSize ImageObject::originalImageSize()
{
    return hasImage() || loadImageFromDisk() ? pixelSize() : QSize(0, 0);
}

QString ImageObject::originalImageSizeAsString()
{
    const QSize size = originalImageSize();
    return QStringLiteral("%1 x %2").arg(size.width()).arg(size.height());
}

QImage ImageObject::thumbnail() const
{
    const std::lock_guard lock(m_stateLock);
    return m_originalThumbnail;
}

std::optional<ImageMetadata> ImageObject::metadata() const
{
    const std::lock_guard lock(m_stateLock);
    return m_metadata;
}

void ImageObject::setMetadata(const ImageMetadata &metadata)
{
    {
        const std::lock_guard lock(m_stateLock);
        m_metadata = metadata;
        m_isMetadataEdited = true;
    }
    Q_EMIT metadataChanged();
}

void ImageObject::releaseImagesData()
{
    const std::lock_guard processing(m_processingLock);
    const std::lock_guard pixels(m_pixelLock);
    m_services.cache.remove(m_key);
    const std::lock_guard lock(m_stateLock);
    m_originalThumbnail = {};
    m_hasImage = false;
    m_version.reset();
    m_turnsOfOwnCopy.reset();
    m_original.reset();
    m_isMetadataEdited = false;
    m_turns = 1;
}

void ImageObject::releaseThumbnail()
{
    const std::unique_lock processing(m_processingLock, std::try_to_lock);
    const std::unique_lock pixels(m_pixelLock, std::try_to_lock);
    if (!processing.owns_lock() || !pixels.owns_lock())
        return;
    const std::lock_guard lock(m_stateLock);
    m_originalThumbnail = {};
}

bool ImageObject::transformOriginalImageWithOperation(int operation)
{
    if (operation < 1 || operation > 5)
        return false;
    const auto transform = static_cast<ImageTransform>(operation);
    std::unique_lock pixels(m_pixelLock, std::defer_lock);
    do { // another thread may release the photo before its pixels are locked
        if (pixels.owns_lock())
            pixels.unlock();
        if (!loadImageFromDisk())
            return false;
        pixels.lock();
    } while (!isLoaded());
    const QImage turned = turnedThumbnail(thumbnail(), transform);
    if (turned.isNull())
        return false;
    // Pixels that are not at hand are turned when they are decoded.
    if (const QImage photo = m_services.cache.find(m_key); !photo.isNull()) {
        const QImage turnedPixels = turnedPhoto(photo, transform);
        if (turnedPixels.isNull())
            return false;
        m_services.cache.insert(m_key, turnedPixels);
    }
    const std::lock_guard lock(m_stateLock);
    m_customWatermarkRectOrigins.clear();
    m_originalThumbnail = turned;
    m_turns = orientationAfter(m_turns, transform);
    if (m_original)
        m_original->turns = orientationAfter(m_original->turns, transform);
    m_uprighting.orientation = orientationAfter(m_uprighting.orientation, transform);
    return true;
}

std::optional<QPointF> ImageObject::customWatermarkRectOriginForWPreset(const WPreset *preset) const
{
    const std::lock_guard lock(m_stateLock);
    for (const CustomOrigin &custom : m_customWatermarkRectOrigins) {
        if (custom.preset.get() == preset)
            return custom.origin;
    }
    return std::nullopt;
}

void ImageObject::setCustomWatermarkRectOrigin(QPointF origin, const std::shared_ptr<const WPreset> &preset)
{
    const std::lock_guard lock(m_stateLock);
    for (CustomOrigin &custom : m_customWatermarkRectOrigins) {
        if (custom.preset == preset) {
            custom.origin = origin;
            return;
        }
    }
    m_customWatermarkRectOrigins.push_back({preset, origin});
}

bool ImageObject::resetCustomWatermarkRectOriginForWPreset(const WPreset *preset)
{
    const std::lock_guard lock(m_stateLock);
    const auto found =
        std::find_if(m_customWatermarkRectOrigins.begin(), m_customWatermarkRectOrigins.end(),
                     [&](const CustomOrigin &custom) { return custom.preset.get() == preset; });
    if (found == m_customWatermarkRectOrigins.end())
        return false;
    m_customWatermarkRectOrigins.erase(found);
    return true;
}

void ImageObject::resetAllCustomWatermarkRectOrigins()
{
    const std::lock_guard lock(m_stateLock);
    m_customWatermarkRectOrigins.clear();
}

QImage ImageObject::drawn(const QImage &image, const Snapshot &snapshot, const AppliedPreset &preset,
                          QRectF *rect) const
{
    if (image.isNull())
        return {};
    const auto custom =
        std::find_if(snapshot.customOrigins.begin(), snapshot.customOrigins.end(),
                     [&](const CustomOrigin &origin) { return origin.preset == preset.preset; });
    const bool isPlacedByHand = custom != snapshot.customOrigins.end();
    QRectF place = isPlacedByHand ? QRectF(custom->origin, QSizeF()) : QRectF();
    const Result<QImage> marked = createWatermarkOnImage(image, preset.values, snapshot.facts,
                                                         m_services.fonts, isPlacedByHand, &place);
    if (!marked)
        return {};
    if (rect && marked->constBits() != image.constBits())
        *rect = place;
    return *marked;
}

QImage ImageObject::createWatermarkedImage(const QImage &image, const AppliedPreset &preset, QRectF *rect)
{
    if (rect)
        *rect = QRectF();
    const Snapshot current = snapshot(image.isNull() ? Pixels::Needed : Pixels::NotNeeded);
    return drawn(image.isNull() ? current.pixels : image, current, preset, rect);
}

QImage ImageObject::createWatermarkedImageForAllAppliedWPresets(const std::vector<AppliedPreset> &presets)
{
    const Snapshot current = snapshot(Pixels::Needed);
    QImage result = current.pixels;
    for (const AppliedPreset &preset : presets) {
        if (const QImage marked = drawn(result, current, preset, nullptr); !marked.isNull())
            result = marked;
    }
    return result;
}

QImage ImageObject::createFinalCGImage(const AppliedPreset *preset, const std::vector<AppliedPreset> &presets,
                                       QRectF *rect)
{
    return preset ? createWatermarkedImage({}, *preset, rect)
                  : createWatermarkedImageForAllAppliedWPresets(presets);
}

QImage ImageObject::savedImage(const AppliedPreset *preset, const std::vector<AppliedPreset> &presets)
{
    return createFinalCGImage(preset, presets);
}

QList<QImage> ImageObject::generatePasteboardImages(const std::vector<AppliedPreset> &presets)
{
    QList<QImage> images;
    for (const AppliedPreset &preset : presets) {
        if (const QImage image = savedImage(&preset, presets); !image.isNull())
            images.append(image);
    }
    return images;
}

Result<CopyReport> ImageObject::saveImageAtPath(const CopyTarget &target,
                                                const std::vector<AppliedPreset> &presets,
                                                const SavingPresetValues &savingPreset,
                                                bool preservesCreationDate, const CancelCheck &isCancelled,
                                                const QString &readFrom)
{
    CopyOrder order;
    order.path = path();
    order.readPath = readFrom.isEmpty() ? readPath() : readFrom;
    order.target = target;
    order.targetType = savingPreset.imageFormatUTI(order.path);
    if (order.targetType.isEmpty())
        return fail(QStringLiteral("the format \"%1\" cannot be written").arg(savingPreset.imageFormat));
    const bool hasLosses =
        order.targetType == QLatin1String("image/jpeg") || order.targetType == QLatin1String("image/heic");
    if (hasLosses && (savingPreset.jpegQuality < 1 || savingPreset.jpegQuality > 100))
        return fail(QStringLiteral("there is no quality of %1 per cent").arg(savingPreset.jpegQuality));
    order.quality = savingPreset.jpegQuality / 100.0;
    order.tiffLzw = savingPreset.tiffCompressionLZW;
    order.preservesCreationDate = preservesCreationDate;
    order.isCancelled = isCancelled;
    const std::optional<FileVersion> before = fileVersionAt(readPath());
    const std::optional<FileVersion> replaced = fileVersionAt(target.path);
    if (before && replaced && before->isSameFile(*replaced))
        order.overwritten = before;
    const std::optional<FileVersion> version = readFrom.isEmpty() ? before : fileVersionAt(readFrom);
    if (readFrom.isEmpty())
        lookAgainUnlessAt(version);
    std::optional<int> turnsBefore;
    bool takesItsPlace = false;
    {
        // Turns, places and pixels of one moment.
        const std::lock_guard pixels(m_pixelLock);
        for (const AppliedPreset &preset : presets)
            order.marks.push_back({preset.values, customWatermarkRectOriginForWPreset(preset.preset.get())});
        const std::lock_guard lock(m_stateLock);
        const bool isOriginal = m_original && version == m_original->version && version != m_version;
        order.metadata = isOriginal ? m_original->metadata : m_metadata;
        order.turns = isOriginal ? m_original->turns : m_turns;
        if (m_hasImage) {
            order.version = version;
            order.upright = version == m_version ? m_services.cache.find(m_key) : QImage();
        }
        takesItsPlace = m_hasImage && order.overwritten;
        turnsBefore = m_turnsOfOwnCopy;
        // Known before the copy is there, because others may look at it at once. Copies of one original are
        // all turned alike.
        if (takesItsPlace)
            m_turnsOfOwnCopy = isOriginal ? 1 : m_turns;
    }
    Result<CopyReport> report = writeCopy(order, m_services);
    if (!report && takesItsPlace) {
        const std::lock_guard lock(m_stateLock);
        m_turnsOfOwnCopy = turnsBefore;
    }
    return report;
}

QSize ImageObject::pixelSize() const
{
    const std::lock_guard lock(m_stateLock);
    return m_hasImage ? m_uprighting.size() : QSize(0, 0);
}

PhotoFacts ImageObject::facts() const
{
    const std::lock_guard lock(m_stateLock);
    return PhotoFacts(m_path, m_metadata.value_or(ImageMetadata()), m_uprighting.size(),
                      m_uprighting.unscaledSize(), m_services.locale);
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "images/copywriter.h"
#include "images/customorigins.h"
#include "images/photoservices.h"
#include "images/photosnapshot.h"
#include "images/photoversion.h"

#include <QImage>

#include <functional>
#include <mutex>
#include <optional>

namespace plexa
{

class ImageSource;

/// What is in memory of one photo: metadata, thumbnail, pixels, the user's turns, and the places chosen by
/// hand. Keeps them consistent with each other and with the file that they were read from.
///
/// Any thread. A callback reports changes, called with nothing locked by the thread that caused them.
class LoadedPhoto final
{
public:
    struct Changes {
        bool inMetadata = false;
        bool inOrigins = false;
    };
    enum class LoadOutcome { Loaded, Unreadable, Busy };

    /// Nothing is read. The services outlive the object.
    LoadedPhoto(const QString &path, const PhotoServices &services,
                std::function<void(const Changes &)> announce);
    ~LoadedPhoto();

    QString path() const;
    /// @return whether that is another path
    bool setPath(const QString &path);
    QString pathToImportFrom() const;
    void setPathToImportFrom(const QString &path);
    QString readPath() const;

    bool isLoaded() const;
    QString loadError() const;

    /// Reads metadata and thumbnail.
    bool load();
    /// The same without waiting for a thread that holds the processing lock.
    LoadOutcome tryLoad();

    /// Reads the photo again if it is loaded and its file has another version than the one that was read.
    /// @param version  of the file now
    void bringUpToDate(const std::optional<FileVersion> &version);

    /// With the pixels of the whole photo, which is loaded for it.
    PhotoSnapshot snapshot();

    /// As ImageObject::readReduced().
    Result<PhotoSnapshot> readReduced(int minimumSide, const CancelCheck &isCanceled);

    /// From the headers of the file unless the photo is loaded.
    Result<PhotoFacts> readFacts() const;
    /// From memory.
    PhotoFacts facts() const;

    QImage cachedPixels() const;
    QImage thumbnail() const;
    PhotoSnapshot thumbnailSnapshot() const;

    std::optional<ImageMetadata> metadata() const;
    void setMetadata(const ImageMetadata &metadata);
    void setMetadataEdit(const MetadataEdit &edit);

    void release();
    enum class Pictures { Thumbnail, All };
    void releasePictures(Pictures which);

    /// Loads the photo, turns it, and forgets the places. @return false, with nothing changed, when that
    /// fails
    bool turn(ImageTransform transform);
    PhotoVersion::Edits pendingEdits() const;
    void restoreTurns(int orientation);

    std::optional<QPointF> originFor(const WPreset *preset) const;
    /// @param edit  returns whether it changed anything, and so does editOrigins()
    bool editOrigins(const std::function<bool(CustomOrigins &)> &edit);

    /// Writes a copy of that version of the file, with metadata, turns, places and pixels of one moment.
    /// Where the copy overwrites the file, that file is then read as the photo's own copy.
    /// @param order    without marks, metadata and turns
    /// @param presets  one for each mark
    Result<CopyReport> writeCopyOf(const std::optional<FileVersion> &version, CopyOrder order,
                                   const std::vector<AppliedPreset> &presets);

    std::recursive_mutex &processingLock() { return m_processingLock; }

private:
    bool hasImage() const;
    bool loadUnder(std::unique_lock<std::recursive_mutex> processing);
    Result<QImage> readPicture(int reducedTo, Changes &changes);
    Result<QImage> readVersion(const ImageSource &source, int reducedTo, Changes &changes);
    Result<Uprighting> adoptVersionOf(const ImageSource &source, Changes &changes);
    void becomeUnreadable(const QString &reason);
    QImage decodedPixels(Changes &changes);
    QImage cachedReduced(int reduction) const;
    void keepReduced(const QImage &picture, int reduction, const Uprighting &uprighting,
                     const std::optional<FileVersion> &version);
    void removeCachedPixels() const { m_services.cache.remove(m_key), m_services.cache.remove(m_reducedKey); }
    void dropPictures();
    PhotoFacts lockedFacts() const;

    const PhotoServices &m_services;
    const std::function<void(const Changes &)> m_announce;
    const PixelCache::Key m_key;
    const PixelCache::Key m_reducedKey;

    std::recursive_mutex m_processingLock;
    std::mutex m_pixelLock;         // one thread decodes or turns at a time; taken after the processing lock
    mutable std::mutex m_stateLock; // guards what follows; taken last, never while decoding

    QString m_path;
    QString m_pathToImportFrom;
    bool m_hasImage = false;
    QString m_loadError;
    PhotoVersion m_file;
    QImage m_thumbnail;
    int m_reduction = 0; // of the cached reduced picture
    CustomOrigins m_origins;
};

} // namespace plexa

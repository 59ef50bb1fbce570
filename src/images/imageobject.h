// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "images/loadedphoto.h"
#include "presets/savingpresetvalues.h"
#include "watermark/texttokens.h"

#include <QObject>
#include <QPointF>
#include <QRectF>

#include <memory>
#include <optional>
#include <vector>

namespace plexa
{

/// One photo of the working set. Loads the photo and its metadata on demand, keeps a thumbnail, applies the
/// user's turns, remembers the places to which watermarks were dragged, draws watermarks and writes copies.
///
/// Decoded pixels are in the shared cache. Pixels that the cache dropped are decoded again when they are
/// needed, with the turns applied; only releaseImagesData() forgets the turns.
///
/// A file that has changed since it was read is read again before pixels are decoded from it or a copy of it
/// is written: metadata, size, thumbnail and pixels always belong to one version of the file. The user's
/// turns and edited metadata survive that, unless a copy of this photo overwrote the file: the copy contains
/// them. Places chosen by hand stay while the size of the photo does. Cached pixels stay until a change of
/// the file is noticed.
///
/// All functions may be called from any thread; signals are emitted by the thread that caused them, with
/// nothing locked.
class ImageObject final : public QObject
{
    Q_OBJECT

public:
    /// A new object for the file; nothing is read. The services outlive it.
    ImageObject(const QString &path, const PhotoServices &services);

    QString path() const { return m_photo.path(); }
    void setPath(const QString &path);

    /// The file's name without folder and extension.
    QString filename() const;
    /// Renames the photo: the path keeps its folder and its extension. A slash in the name becomes "_"; an
    /// empty name, "." and ".." change nothing.
    void setFilename(const QString &filename);

    /// The file that is read instead of path(); empty: path() is.
    QString pathToImportFrom() const { return m_photo.pathToImportFrom(); }
    void setPathToImportFrom(const QString &path) { m_photo.setPathToImportFrom(path); }

    /// The file that is read.
    QString readPath() const { return m_photo.readPath(); }

    /// The facts of the photo without decoding it; reads the headers of the file unless the photo is loaded.
    [[nodiscard]] Result<PhotoFacts> readFacts() const { return m_photo.readFacts(); }

    /// Reads the metadata and the thumbnail. Cheap when the photo is loaded.
    /// @return false when the photo cannot be read, each time it is called; loadError() holds the reason
    bool loadImageFromDisk() { return m_photo.load(); }
    QString loadError() const { return m_photo.loadError(); }

    using LoadOutcome = LoadedPhoto::LoadOutcome;
    /// As loadImageFromDisk(), without waiting for a thread that holds the processing lock.
    LoadOutcome tryLoadImageFromDisk() { return m_photo.tryLoad(); }

    /// Whether loadImageFromDisk() would return true at once.
    bool isLoaded() const { return m_photo.isLoaded(); }

    /// The photo upright, its pixels square, the user's turns applied; loads it. Null when that fails: either
    /// the photo cannot be read (isLoaded() is false afterwards), or the whole of it exceeds the memory
    /// budget.
    QImage originalCGImage();

    /// originalCGImage() from the cache; null when it is not there.
    QImage imageAtHand() const { return m_photo.cachedPixels(); }

    /// The photo for the screen: the facts of the full photo, its places, and its pixels as originalCGImage()
    /// has them, reduced to 1/2, 1/4 or 1/8 while they are decoded. Loads the photo. Waits neither for a
    /// thread that works on the photo nor for the memory budget, unless the picture or its decoder takes more
    /// than 64 MB.
    /// @param minimumSide  pixels, > 0; the longer side is shorter only where that of the stored photo is
    /// @param isCanceled  asked before each strip of rows
    /// @return the reason when the photo cannot be read or the work was canceled
    [[nodiscard]] Result<PhotoSnapshot> readReduced(int minimumSide, const CancelCheck &isCanceled = {})
    {
        return m_photo.readReduced(minimumSide, isCanceled);
    }

    /// At most 400 pixels on its longer side, mirrored top to bottom. Null until the photo is loaded, and
    /// after releaseThumbnail().
    QImage thumbnail() const { return m_photo.thumbnail(); }

    /// The same as `pixels`, with the facts and places that belong to it.
    PhotoSnapshot thumbnailSnapshot() const { return m_photo.thumbnailSnapshot(); }

    /// None until the photo is loaded.
    std::optional<ImageMetadata> metadata() const { return m_photo.metadata(); }
    /// The metadata that setMetadata() has set and that the file does not contain.
    std::optional<ImageMetadata> editedMetadata() const { return m_photo.pendingEdits().metadata; }
    /// Sets edited metadata, which copies will carry; also for a photo that was not loaded yet.
    void setMetadata(const ImageMetadata &metadata) { m_photo.setMetadata(metadata); }
    /// Edits the metadata of each version of the file that is read from now on, also for a copy that is
    /// written without loading the photo; empty: none.
    void setMetadataEdit(const MetadataEdit &edit) { m_photo.setMetadataEdit(edit); }

    /// Forgets pixels, thumbnail and turns; the metadata stay. Waits for the processing lock.
    void releaseImagesData() { m_photo.release(); }

    /// Forgets the thumbnail until the photo is loaded again; does nothing while another thread works on the
    /// photo. For long lists, whose thumbnails would fill the memory.
    void releaseThumbnail() { m_photo.releasePictures(LoadedPhoto::Pictures::Thumbnail); }
    /// The same with decoded pixels. Turns, metadata and places stay: for a photo that may be needed again.
    void releasePictures() { m_photo.releasePictures(LoadedPhoto::Pictures::All); }

    /// The processing lock, for work that must not be done twice on one photo at a time. A thread that holds
    /// it may load the photo.
    void lock() { m_photo.processingLock().lock(); }
    bool tryLock() { return m_photo.processingLock().try_lock(); }
    void unlock() { m_photo.processingLock().unlock(); }

    /// The user's turns that the file does not contain, as an orientation.
    int turns() const { return m_photo.pendingEdits().turns; }
    /// Sets them for a photo that was not loaded yet. Not an orientation: none.
    void restoreTurns(int orientation) { m_photo.restoreTurns(orientation); }

    /// Turns or mirrors the photo and forgets the places chosen by hand.
    /// @return false, with nothing changed, when the photo cannot be read
    bool transformOriginalImageWithOperation(ImageTransform operation) { return m_photo.turn(operation); }

    /// Places chosen by hand: photo pixels, origin at the bottom left. Presets are compared by identity.
    std::optional<QPointF> customWatermarkRectOriginForWPreset(const WPreset *preset) const
    {
        return m_photo.originFor(preset);
    }
    void setCustomWatermarkRectOrigin(QPointF origin, const std::shared_ptr<const WPreset> &preset);
    bool resetCustomWatermarkRectOriginForWPreset(const WPreset *preset);
    void resetAllCustomWatermarkRectOrigins();
    /// All places of the photo.
    CustomOrigins customWatermarkRectOrigins();
    /// Replaces all places, if they are still the expected ones. @return whether they were
    bool exchangeCustomWatermarkRectOrigins(const CustomOrigins &expected, const CustomOrigins &origins);

    /// The photo with one preset drawn; without a mark when the preset has nothing to draw. Fails when
    /// the photo cannot be read or the preset cannot be drawn.
    [[nodiscard]] Result<QImage> createWatermarkedImage(const AppliedPreset &preset);

    /// Writes one copy with these presets drawn.
    /// @param readFrom  the file to read, if not readPath()
    [[nodiscard]] Result<CopyReport>
    saveImageAtPath(const CopyTarget &target, const std::vector<AppliedPreset> &presets,
                    const SavingPresetValues &savingPreset, const CopyRules &rules,
                    const CancelCheck &isCanceled = {}, const QString &readFrom = {});

    /// The facts of the photo as far as it has been read; reads nothing.
    PhotoFacts facts() const { return m_photo.facts(); }

Q_SIGNALS:
    void pathChanged();
    void metadataChanged();
    void customWatermarkRectOriginsChanged();

private:
    void announce(const LoadedPhoto::Changes &changes);

    const PhotoServices &m_services;
    LoadedPhoto m_photo;
};

} // namespace plexa

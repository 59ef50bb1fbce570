// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "images/copywriter.h"
#include "images/photoservices.h"
#include "images/uprighting.h"
#include "metadata/imagemetadata.h"
#include "platform/fileversion.h"
#include "presets/savingpresetvalues.h"
#include "watermark/texttokens.h"
#include "watermark/wpreset.h"

#include <QObject>
#include <QPointF>
#include <QRectF>

#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace plexa
{

class ImageSource;

/// A preset as it stood when a piece of work began: who it is (places chosen by hand are kept by that), and
/// its values, which the work may read while the user goes on editing.
struct AppliedPreset {
    std::shared_ptr<const WPreset> preset;
    WPresetValues values;
};

/// One photo of the working set. It loads the photo and its metadata when they are asked for, keeps a
/// thumbnail, applies the user's turns, remembers the places to which watermarks were dragged, and makes
/// watermarked images and copies.
///
/// Loaded pixels live in the shared cache. Pixels that the cache gave up are decoded again when they are
/// needed, with the turns applied; only releaseImagesData() forgets the turns.
///
/// A file that has changed since it was read is looked at anew before pixels are decoded from it or a copy is
/// made of it: metadata, size, thumbnail and pixels are always those of one version of the file. The user's
/// turns and edited metadata stay then, unless it was a copy of this photo that took the file's place: that
/// has them in it. Places chosen by hand stay while the photo's size does. Pixels at hand are not given up
/// for a change that nobody has come across yet.
///
/// All functions may be called from any thread; signals are sent from the thread that caused them.
class ImageObject final : public QObject
{
    Q_OBJECT

public:
    /// A new object for the file; nothing is read. The services outlive it.
    ImageObject(const QString &path, const PhotoServices &services);
    ~ImageObject() override;

    QString path() const;
    /// Changes the path, and with it the file name.
    void setPath(const QString &path);

    /// The file's name without folder and extension.
    QString filename() const;
    /// Renames the photo: the path keeps its folder and its extension.
    void setFilename(const QString &filename);

    /// Where the photo is read from when not from path(); empty: from path().
    QString pathToImportFrom() const;
    void setPathToImportFrom(const QString &path);

    /// The file that is read.
    QString readPath() const;

    /// What is known of the photo, without decoding it; reads the file's headers unless the photo is loaded.
    [[nodiscard]] Result<PhotoFacts> readFacts() const;

    /// Reads the photo: its metadata, its thumbnail, and whether it can be decoded. Cheap when that was done.
    /// @return false when the photo cannot be read, each time it is called; loadError() says why
    bool loadImageFromDisk();
    QString loadError() const;

    enum class LoadOutcome { Loaded, Unreadable, Busy };
    /// As loadImageFromDisk(), but does not wait for a thread that holds the processing lock.
    LoadOutcome tryLoadImageFromDisk();

    /// Is nothing left to be read: would loadImageFromDisk() return true at once?
    bool isLoaded() const;

    /// Has the photo been read at least once?
    bool imageHasBeenLoaded() const;

    /// The photo upright, its pixels square, the user's turns applied; loads it. Null when that fails: either
    /// the photo is not loaded any more, as isLoaded() says, or the whole of it is too large for the memory.
    QImage originalCGImage();

    /// originalCGImage() if it is decoded already, else null.
    QImage imageAtHand() const;

    /// Pixels of originalCGImage(), without decoding it; (0, 0) when the photo cannot be read.
    QSize originalImageSize();

    /// "WxH" in words: "4000 x 3000".
    QString originalImageSizeAsString();

    /// At most 400 pixels on its longer side, mirrored top to bottom. Null until the photo is loaded, and
    /// after releaseThumbnail().
    QImage thumbnail() const;

    /// None until the photo is loaded; a copy.
    std::optional<ImageMetadata> metadata() const;
    /// Takes over edited metadata, which copies will carry.
    void setMetadata(const ImageMetadata &metadata);

    /// Forgets pixels, thumbnail and turns; the metadata stay. Waits for who holds the processing lock.
    void releaseImagesData();

    /// Forgets the thumbnail alone, until the photo is loaded the next time; nothing when somebody works on
    /// the photo. For long lists, whose thumbnails would fill the memory.
    void releaseThumbnail();

    /// The processing lock, for work that must not be done twice on one photo at a time. Its holder may load
    /// the photo.
    void lock() { m_processingLock.lock(); }
    bool tryLock() { return m_processingLock.try_lock(); }
    void unlock() { m_processingLock.unlock(); }

    /// Turns or mirrors the photo (codes: ImageTransform) and forgets the places chosen by hand.
    /// @return false, and nothing changed, when the operation is unknown or the photo cannot be read
    bool transformOriginalImageWithOperation(int operation);

    /// Places chosen by hand: photo pixels, origin at the bottom left. Presets are compared by identity.
    std::optional<QPointF> customWatermarkRectOriginForWPreset(const WPreset *preset) const;
    void setCustomWatermarkRectOrigin(QPointF origin, const std::shared_ptr<const WPreset> &preset);
    bool resetCustomWatermarkRectOriginForWPreset(const WPreset *preset);
    void resetAllCustomWatermarkRectOrigins();

    /// One preset drawn.
    /// @param image  what to draw on, of the photo's size; null: the photo
    /// @param rect   receives, where given, the watermark's rectangle; zeros when there is no watermark
    /// @return the very image when the preset yields nothing; null when it cannot be made
    QImage createWatermarkedImage(const QImage &image, const AppliedPreset &preset, QRectF *rect = nullptr);

    /// All presets drawn in their order; one that cannot be drawn is left out. Null when the photo cannot be
    /// read.
    QImage createWatermarkedImageForAllAppliedWPresets(const std::vector<AppliedPreset> &presets);

    /// One preset drawn, or with none, all of them.
    QImage createFinalCGImage(const AppliedPreset *preset, const std::vector<AppliedPreset> &presets,
                              QRectF *rect = nullptr);

    /// The picture that is saved.
    QImage savedImage(const AppliedPreset *preset, const std::vector<AppliedPreset> &presets);

    /// For the clipboard: one picture for each preset.
    QList<QImage> generatePasteboardImages(const std::vector<AppliedPreset> &presets);

    /// Writes one copy with these presets drawn.
    /// @param readFrom  where the photo's file is to be read, if not at readPath()
    [[nodiscard]] Result<CopyReport>
    saveImageAtPath(const CopyTarget &target, const std::vector<AppliedPreset> &presets,
                    const SavingPresetValues &savingPreset, bool preservesCreationDate,
                    const CancelCheck &isCancelled = {}, const QString &readFrom = {});

    /// Pixels of the photo after all turns; (0, 0) until it is loaded.
    QSize pixelSize() const;

    /// The facts of the photo as far as it has been read; reads nothing.
    PhotoFacts facts() const;

Q_SIGNALS:
    void pathChanged();
    void metadataChanged();

private:
    struct CustomOrigin {
        std::shared_ptr<const WPreset> preset;
        QPointF origin;
    };

    /// The photo at one moment: its facts and its pixels belong together, whatever is turned meanwhile.
    struct Snapshot {
        PhotoFacts facts;
        std::vector<CustomOrigin> customOrigins;
        QImage pixels; ///< null when they were not asked for or cannot be had
    };
    enum class Pixels { Needed, NotNeeded };

    /// What the headers of the file say, with what is known of the photo.
    struct Look {
        bool isNew = false;     ///< the file is not the one that was read before, or that was given up
        bool isOwnCopy = false; ///< a copy of this photo has taken the file's place
        std::optional<FileVersion> version;
        std::optional<ImageMetadata> metadata;
        Uprighting uprighting;
        int turns = 1;
    };
    /// The photo before its own copy took its place; a run makes its other copies from that file.
    struct Original {
        std::optional<FileVersion> version;
        std::optional<ImageMetadata> metadata;
        int turns = 1;
    };

    bool hasImage() const;
    bool loadUnder(std::unique_lock<std::recursive_mutex> processing);
    Result<QImage> readPicture(int reducedTo, bool &hasNewMetadata);
    Result<QImage> readVersion(const ImageSource &source, int reducedTo, bool &hasNewMetadata);
    Look lookAt(const ImageSource &source) const;
    void takeOver(const Look &look);
    void becomeUnreadable(const QString &reason);
    QImage decodedPixels(bool &hasNewMetadata);
    void lookAgainUnlessAt(const std::optional<FileVersion> &version);
    Snapshot snapshot(Pixels pixels);
    QImage drawn(const QImage &image, const Snapshot &snapshot, const AppliedPreset &preset,
                 QRectF *rect) const;

    const PhotoServices &m_services;
    const PixelCache::Key m_key;

    std::recursive_mutex m_processingLock;
    std::mutex m_pixelLock;         // one thread decodes or turns at a time; taken after the processing lock
    mutable std::mutex m_stateLock; // guards what follows; taken last, never while decoding

    QString m_path;
    QString m_pathToImportFrom;
    bool m_imageHasBeenLoaded = false;
    bool m_hasImage = false;
    QString m_loadError;
    std::optional<FileVersion> m_version; // of the file that all this is of
    // Set when a copy of this photo takes its file's place, until that is looked at: the turns in its pixels.
    std::optional<int> m_turnsOfOwnCopy;
    std::optional<Original> m_original;
    std::optional<ImageMetadata> m_metadata;
    bool m_isMetadataEdited = false;
    Uprighting m_uprighting; // of the file, the user's turns included
    int m_turns = 1;         // the user's alone
    QImage m_originalThumbnail;
    std::vector<CustomOrigin> m_customWatermarkRectOrigins;
};

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/focusloader.h"
#include "app/imageimport.h"
#include "app/imagelist.h"
#include "app/imagescan.h"
#include "app/imageselection.h"
#include "app/mainthreadcalls.h"

#include <QObject>
#include <QStringList>
#include <QTimer>

#include <mutex>

namespace plexa
{

class Alerts;
class StatusManager;
class UserDefaults;

/// What a set works with. All of it outlives the set.
struct ImageSetServices {
    const PhotoServices &photos;
    UserDefaults &defaults;
    Alerts &alerts; ///< called on the main thread
    StatusManager &status;
    int importThreads; ///< photos that are loaded at a time
};

/// The working set: the photos that the user has gathered, in his order, and those of them that are shown.
/// In Small Batch mode ("browser mode", a grid) it holds at most 500 photos and loads all of them in the
/// background; in Large Batch mode (a table) it has no limit and loads a photo when the user looks at it.
///
/// Lives on the main thread, and never holds it up: folders are walked and photos loaded elsewhere. Every
/// index is one of imagesFiltered().
class ImageSet final : public QObject
{
    Q_OBJECT

public:
    static constexpr std::size_t kMaxImagesInBrowserMode = 500;

    enum class Refresh { Light, Full }; ///< pictures may have changed; anything may have

    explicit ImageSet(const ImageSetServices &services);
    /// Waits for the photos in work.
    ~ImageSet() override;

    /// The whole set.
    std::shared_ptr<const ImageList> images() const { return m_images; }
    /// What is shown: the very same list while no filter is active, else a list of its own.
    std::shared_ptr<const ImageList> imagesFiltered() const { return m_imagesFiltered; }
    bool isFiltered() const { return m_imagesFiltered != m_images; }

    ImageSelection &selection() { return m_selection; }
    const ImageSelection &selection() const { return m_selection; }
    /// In the order of the list.
    ImageList selectedImages() const;
    /// Selects one photo and asks the preview to show all of it; an index of -1 only clears the selection.
    void selectAndPreviewImageWithIndex(int index);

    bool imageListIsInBrowserMode() const { return m_imageListIsInBrowserMode; }
    /// Changes the batch mode and stores it; refused with a warning when the set is too large.
    void setImageListModeToBrowser(bool isBrowser);
    void switchImageListMode() { setImageListModeToBrowser(!m_imageListIsInBrowserMode); }

    /// Adds the picture files of these paths, folders with all that is below them, in the background; then
    /// imports them. What is dropped meanwhile waits its turn.
    void scanImagesAtPaths(const QStringList &paths);
    bool isScanning() const { return m_isScanning; }

    /// Adds one file, if it is a picture and the limit of Small Batch mode, or the user, allows.
    /// @return whether it was added
    bool addImageWithPath(const QString &path);

    /// Adds a photo untested, whatever the limit.
    /// @param pathToImportFrom  where it is read; empty: from its path
    void addImage(const QString &path, const QString &pathToImportFrom);

    /// In Small Batch mode, begins to load what is not loaded; in Large Batch mode, stops that.
    void importMissingImages();
    bool isImportingImages() const { return m_isImportingImages; }
    /// Ends scanning and importing at the next file. What was added stays.
    void stopImportingImages();

    QString filterText() const { return m_filterText; }
    /// Shows the photos whose file name contains the text, in any letter case; all of them for an empty one.
    void filterImages(const QString &text);
    void disableImageFilters();

    void removeSelectedImages();
    /// Moves photos before the one that stands at `toIndex` now; the list's length means to the end. While a
    /// filter is active, the end of the shown list stands for the same number in the whole one.
    void moveIndexes(const IndexList &indexes, int toIndex);

    /// The photo that shownImageChanged() told of last.
    const std::shared_ptr<ImageObject> &shownImage() const { return m_shownImage; }

    /// For who has loaded a photo: a list without pictures (Large Batch mode) keeps no thumbnail but that of
    /// the shown photo.
    void forgetThumbnail(ImageObject &image);

    void refreshImageList(Refresh refresh) { Q_EMIT refreshed(refresh); }

Q_SIGNALS:
    // What happens to the shown list; each pair encloses one change. The selection is in step with the list
    // when the second one is sent, and its own signals come afterwards.
    void imagesAboutToBeInserted(int first, int last);
    void imagesInserted();
    void imagesAboutToBeRemoved(int first, int last);
    void imagesRemoved();
    void orderAboutToChange();
    void orderChanged();
    void listAboutToBeReset();
    void listReset();

    void refreshed(plexa::ImageSet::Refresh refresh);
    /// The mode that now holds; also when a change was refused, so that a button can go back.
    void imageListModeChanged(bool isBrowser);
    void filterTextChanged();
    /// The photo to preview, loaded; null: none.
    void shownImageChanged(const std::shared_ptr<plexa::ImageObject> &image);
    /// The preview is to show the whole photo that has the focus, which may still be loading.
    void fitToWindowRequested();
    void scanFinished();
    void importFinished();

private:
    bool contains(const ImageObject *image) const;
    int indexOf(const ImageObject *image) const;
    bool matchesFilter(const ImageObject &image) const;

    void append(const ImageList &images);
    void removeImages(const ImageList &images);
    void removeIndexes(const IndexList &indexes);
    void removeRun(const IndexList &run);
    std::ptrdiff_t moveShown(const ImageList &moved, int toIndex);
    void updateStatus();

    void startScan(const QStringList &paths);
    void takeFound(const QStringList &paths);
    void takeUnreadable(const QStringList &paths);
    bool isFull(std::size_t waiting) const;
    bool mayGrowBeyondLimit();
    void scanEnded();

    void imageDelivered(const std::shared_ptr<ImageObject> &image, ImageImport::Outcome outcome);
    void finishedImportingImages();
    void reportUnsupportedFiles();

    void focusImageDidChangeTo(int index);
    void focusLoaded(const std::shared_ptr<ImageObject> &image, bool isLoaded);
    void show(const std::shared_ptr<ImageObject> &image);

    const ImageSetServices m_services;

    mutable std::mutex m_imagesLock; // held to change m_images, and by other threads to read it
    const std::shared_ptr<ImageList> m_images;
    std::shared_ptr<ImageList> m_imagesFiltered;
    ImageSelection m_selection;
    std::shared_ptr<ImageObject> m_shownImage;
    QString m_filterText;
    QString m_searchedText; // the same as it is compared
    bool m_imageListIsInBrowserMode = true;

    bool m_isScanning = false;
    bool m_isAdding = false;        // a question may be open
    bool m_hasScanEnded = false;    // its last files may still wait for that question
    bool m_isStopRequested = false; // by the user, for all that is going on
    QStringList m_found;            // not added yet
    QStringList m_waitingPaths;     // of the next scan
    std::size_t m_nFound = 0;

    bool m_isImportingImages = false;
    bool m_isImportWanted = false; // once more when the running one has ended
    std::size_t m_nImported = 0;
    QStringList m_unsupportedFiles;
    QTimer m_imageBrowserUpdateTimer;

    // The threads are joined first.
    MainThreadCalls m_calls;
    FocusLoader m_focusLoader;
    ImageImport m_import;
    ImageScan m_scan;
};

} // namespace plexa

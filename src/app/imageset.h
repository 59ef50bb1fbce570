// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/backgroundjob.h"
#include "app/imageorder.h"
#include "app/imageselection.h"

#include <QObject>

#include <mutex>

namespace plexa
{

class Alerts;
class StatusManager;
class UserDefaults;

/// The services of a set and of the gathering of its photos. All of them outlive both.
struct ImageSetServices {
    const PhotoServices &photos;
    UserDefaults &defaults;
    Alerts &alerts; ///< called on the main thread
    StatusManager &status;
    int importThreads; ///< photos that are loaded at a time
};

/// The photos whose places an edit has changed, in their order.
struct ImageOrder {
    ImageList images; ///< of the whole set
    ImageList shown;
    QString filterText; ///< of the shown list
};

/// Photos that the user has removed, with the places that they had.
struct ImageRemoval {
    ImagePlaces images; ///< of the whole set
    ImagePlaces shown;
    QString filterText; ///< of the shown list
};

/// The working set: the photos that the user has gathered, in the user's order, and the shown ones. In Small
/// Batch mode ("browser mode", a grid) ImageGathering limits it to 500 photos and loads all of them; in Large
/// Batch mode (a table) a photo is loaded when the user selects it. Indexes are those of imagesFiltered().
/// Main thread.
class ImageSet final : public QObject
{
    Q_OBJECT

public:
    static constexpr std::size_t kMaxImagesInBrowserMode = 500;

    enum class Refresh { Light, Full }; ///< pictures may have changed; anything may have

    explicit ImageSet(const ImageSetServices &services);

    /// The whole set.
    std::shared_ptr<const ImageList> images() const { return m_images; }
    /// The shown photos: the same list while no filter is active, else another one.
    std::shared_ptr<const ImageList> imagesFiltered() const { return m_imagesFiltered; }
    bool isFiltered() const { return m_imagesFiltered != m_images; }

    ImageSelection &selection() { return m_selection; }
    const ImageSelection &selection() const { return m_selection; }
    /// In the order of the list.
    ImageList selectedImages() const;
    /// Selects one photo and fits it into the preview; an index of -1 only clears the selection.
    void selectAndPreviewImageWithIndex(int index);

    bool imageListIsInBrowserMode() const { return m_imageListIsInBrowserMode; }
    /// Changes the batch mode and stores it; refused with a warning when the set is too large.
    void setImageListModeToBrowser(bool isBrowser);
    void switchImageListMode() { setImageListModeToBrowser(!m_imageListIsInBrowserMode); }

    // Any thread.
    ImageList imagesNow() const;
    bool contains(const ImageObject *image) const;

    /// Adds photos at the end, whatever the limit.
    void addImages(const ImageList &images);
    /// Adds a photo without a check of its type.
    /// @param pathToImportFrom  where it is read; empty: from its path
    void addImage(const QString &path, const QString &pathToImportFrom);
    void removeImages(const ImageList &images);

    QString filterText() const { return m_filterText; }
    /// Shows the photos whose file name contains the text, in any letter case; all of them for an empty one.
    void filterImages(const QString &text);
    void disableImageFilters();

    // A removed photo keeps no pixels and no thumbnail. The first of the photos that follow is selected.
    void removeSelectedImages();
    /// Undoes a removal of imagesRemovedByUser(): the photos are at their former places, and selected. A
    /// filter that would hide them ends.
    void restoreImages(const ImageRemoval &removal);
    /// Removes the photos that are still there. @return whether there are any
    bool removeAgain(const ImageRemoval &removal);
    /// Selects those of the photos that the set contains, if any. A filter that hides one of them ends.
    void selectImages(const ImageList &images);
    // In a new order, selection and focus stay with their photos.

    /// Moves photos to the place before `toIndex` and selects them. While a filter is active, the end of the
    /// shown list means the same index in the whole one.
    void moveIndexes(const IndexList &indexes, int toIndex);
    /// Moves each group of selected neighbors past its neighbor in the shown list.
    void stepSelectedImages(Step step);
    /// Gives the photos, also the hidden ones, this order. Photos that `order` does not contain keep their
    /// places.
    void sortImages(const ImageList &order);
    /// Restores an order of orderEdited(). @return whether that changes anything
    bool restoreOrder(const ImageOrder &order);

    /// The photo of the last shownImageChanged().
    const std::shared_ptr<ImageObject> &shownImage() const { return m_shownImage; }

    /// Called after a photo was loaded: in Large Batch mode only the shown photo keeps its thumbnail, and a
    /// removed one keeps nothing.
    void forgetThumbnail(ImageObject &image);

    void refreshImageList(Refresh refresh) { Q_EMIT refreshed(refresh); }

Q_SIGNALS:
    // Changes of the shown list. At the second signal of a pair the selection has its new indexes; its own
    // signals are sent afterwards.
    void imagesAboutToBeInserted(int first, int last);
    void imagesInserted();
    void imagesAboutToBeRemoved(int first, int last);
    void imagesRemoved();
    void orderAboutToChange();
    void orderChanged();
    void listAboutToBeReset();
    void listReset();

    /// After all other signals.
    void imagesRemovedByUser(const plexa::ImageRemoval &removal);
    /// The user has changed the order.
    void orderEdited(const plexa::ImageOrder &before, const plexa::ImageOrder &after);

    void refreshed(plexa::ImageSet::Refresh refresh);
    /// Sent even if a change was refused, so that a button can go back.
    void imageListModeChanged(bool isBrowser);
    void filterTextChanged();
    /// The photo to preview, loaded; or null.
    void shownImageChanged(const std::shared_ptr<plexa::ImageObject> &image);
    /// The photo that has the focus has to be loaded before it is shown; until then none is.
    /// shownImageChanged() follows, unless the focus goes elsewhere meanwhile or the photo cannot be read.
    void shownImageAboutToLoad(const std::shared_ptr<plexa::ImageObject> &image);
    /// The photo that has the focus, which may still be loading, is to be fitted into the preview.
    void fitToWindowRequested();

private:
    int indexOf(const ImageObject *image) const;
    bool matchesFilter(const ImageObject &image) const;

    void removeIndexes(const IndexList &indexes);
    void removeAndSelectNext(const IndexList &removed);
    void removeRun(const IndexList &run);
    void reorder(ImageList images, ImageList shown, const ImageList &selected);
    void setOrder(ImageList images, ImageList shown, const ImageList &selected);
    void updateStatus();

    void focusImageDidChangeTo(int index);
    void loadWanted();
    void focusLoaded(BackgroundJob::End end);
    void show(const std::shared_ptr<ImageObject> &image);

    const ImageSetServices m_services;

    mutable std::mutex m_imagesLock; // held to change m_images, and by other threads to read it
    const std::shared_ptr<ImageList> m_images;
    std::shared_ptr<ImageList> m_imagesFiltered;
    ImageSelection m_selection;
    std::shared_ptr<ImageObject> m_shownImage;
    bool m_isLoadAnnounced = false; // by shownImageAboutToLoad(), without a shownImageChanged() since
    QString m_filterText;
    QString m_searchedText; // the same in the form that is compared
    bool m_imageListIsInBrowserMode = true;
    // A user who walks through a long list gets the photo where the walk stops: only the last one waits.
    std::shared_ptr<ImageObject> m_wanted;
    std::shared_ptr<ImageObject> m_loading;
    BackgroundJob m_loader;
};

} // namespace plexa

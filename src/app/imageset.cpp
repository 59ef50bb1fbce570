// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/imageset.h"

#include "app/imageorder.h"
#include "app/statusmanager.h"
#include "platform/alerts.h"
#include "platform/settings.h"
#include "platform/userdefaults.h"

#include <algorithm>
#include <optional>

namespace plexa
{

namespace
{

// Removals of more groups of photos are sent as a new list: for a view, one group costs as much.
constexpr std::size_t kMaxRuns = 50;

/// The form of a text for a search without regard to letter case and to the encoding of accents.
QString searchable(const QString &text)
{
    return text.normalized(QString::NormalizationForm_C).toLower();
}

} // namespace

ImageSet::ImageSet(const ImageSetServices &services)
    : m_services(services)
    , m_images(std::make_shared<ImageList>())
    , m_imagesFiltered(m_images)
{
    connect(&m_selection, &ImageSelection::selectionChanged, this,
            [this] { m_services.status.setNSelectedImages(m_selection.selectedIndexes().size()); });
    connect(&m_selection, &ImageSelection::focusImageChanged, this,
            [this](int to) { focusImageDidChangeTo(to); });
    connect(&m_loader, &BackgroundJob::ended, this, &ImageSet::focusLoaded);
    updateStatus();
}

ImageList ImageSet::imagesNow() const
{
    const std::lock_guard lock(m_imagesLock);
    return *m_images;
}

bool ImageSet::contains(const ImageObject *image) const
{
    const std::lock_guard lock(m_imagesLock);
    return indexIn(*m_images, image) != ImageSelection::kNone;
}

int ImageSet::indexOf(const ImageObject *image) const
{
    return indexIn(*m_imagesFiltered, image);
}

void ImageSet::updateStatus()
{
    m_services.status.setImages(m_images, m_imagesFiltered, m_selection.selectedIndexes().size());
}

ImageList ImageSet::selectedImages() const
{
    ImageList selected;
    for (const int index : m_selection.selectedIndexes())
        selected.push_back((*m_imagesFiltered)[static_cast<std::size_t>(index)]);
    return selected;
}

void ImageSet::selectAndPreviewImageWithIndex(int index)
{
    if (index < 0) {
        m_selection.selectNone();
        return;
    }
    m_selection.selectIndexes({index});
    Q_EMIT fitToWindowRequested();
}

void ImageSet::setImageListModeToBrowser(bool isBrowser)
{
    if (isBrowser && m_images->size() > kMaxImagesInBrowserMode) {
        const QString text =
            tr("%1 images are currently imported. You cannot work with over %2 images in the Small Batch "
               "mode, because this may slow down your computer. Please remove some images if you need to "
               "switch.")
                .arg(m_images->size())
                .arg(kMaxImagesInBrowserMode);
        m_services.alerts.run({.style = Alert::Style::Warning,
                               .title = tr("Too many images for the Small Batch mode!"),
                               .text = text});
        Q_EMIT imageListModeChanged(m_imageListIsInBrowserMode);
        return;
    }
    const ImageSelection::Hold hold(m_selection);
    const IndexList selected = m_selection.selectedIndexes();
    m_imageListIsInBrowserMode = isBrowser;
    m_services.defaults.setObject(settings::imageListIsInBrowserMode, isBrowser);
    m_selection.setView(isBrowser ? ImageSelection::View::Grid : ImageSelection::View::Table);
    Q_EMIT imageListModeChanged(isBrowser);
    filterImages(m_filterText);
    m_selection.selectIndexes(selected);
}

bool ImageSet::matchesFilter(const ImageObject &image) const
{
    return searchable(image.path().section(QLatin1Char('/'), -1)).contains(m_searchedText);
}

void ImageSet::filterImages(const QString &text)
{
    const ImageSelection::Hold hold(m_selection);
    m_selection.selectNone();
    Q_EMIT listAboutToBeReset();
    const bool isOtherText = text != m_filterText;
    m_filterText = text;
    m_searchedText = searchable(text);
    m_imagesFiltered = m_images;
    if (!text.isEmpty()) {
        m_imagesFiltered = std::make_shared<ImageList>();
        std::copy_if(m_images->begin(), m_images->end(), std::back_inserter(*m_imagesFiltered),
                     [this](const std::shared_ptr<ImageObject> &image) { return matchesFilter(*image); });
    }
    m_selection.reset(static_cast<int>(m_imagesFiltered->size()));
    Q_EMIT listReset();
    if (isOtherText)
        Q_EMIT filterTextChanged();
    refreshImageList(Refresh::Full);
    updateStatus();
}

void ImageSet::disableImageFilters()
{
    // Without a filter, all photos are shown already and the selection can stay.
    if (isFiltered())
        filterImages({});
}

void ImageSet::addImage(const QString &path, const QString &pathToImportFrom)
{
    const auto image = std::make_shared<ImageObject>(path, m_services.photos);
    image->setPathToImportFrom(pathToImportFrom);
    addImages({image});
}

void ImageSet::addImages(const ImageList &images)
{
    if (images.empty())
        return;
    ImageList shown;
    if (isFiltered()) {
        std::copy_if(images.begin(), images.end(), std::back_inserter(shown),
                     [this](const std::shared_ptr<ImageObject> &image) { return matchesFilter(*image); });
    }
    const auto first = static_cast<int>(m_imagesFiltered->size());
    const auto count = static_cast<int>(isFiltered() ? shown.size() : images.size());
    const ImageSelection::Hold hold(m_selection);
    if (count > 0)
        Q_EMIT imagesAboutToBeInserted(first, first + count - 1);
    {
        const std::lock_guard lock(m_imagesLock);
        m_images->insert(m_images->end(), images.begin(), images.end());
    }
    if (isFiltered())
        m_imagesFiltered->insert(m_imagesFiltered->end(), shown.begin(), shown.end());
    m_selection.insertIndexes(first, count);
    if (count > 0)
        Q_EMIT imagesInserted();
    m_services.status.update();
}

void ImageSet::removeImages(const ImageList &images)
{
    const ImageIdentities gone = identitiesOf(images);
    removeIndexes(placesIn(*m_imagesFiltered, gone).indexes);
    // The photos that the filter hides.
    const std::lock_guard lock(m_imagesLock);
    eraseFrom(*m_images, gone);
}

void ImageSet::removeIndexes(const IndexList &indexes)
{
    if (indexes.isEmpty())
        return;
    const ImageSelection::Hold hold(m_selection);
    ImageList gone; // kept until all signals are sent
    for (const int index : indexes)
        gone.push_back((*m_imagesFiltered)[static_cast<std::size_t>(index)]);
    const std::vector<IndexList> runs = runsOf(indexes);
    if (runs.size() > kMaxRuns) {
        Q_EMIT listAboutToBeReset();
        {
            const std::lock_guard lock(m_imagesLock);
            eraseFrom(*m_imagesFiltered, identitiesOf(gone));
        }
        m_selection.removeIndexes(indexes);
        Q_EMIT listReset();
    } else {
        std::for_each(runs.rbegin(), runs.rend(), [this](const IndexList &run) { removeRun(run); });
    }
    if (isFiltered()) {
        const std::lock_guard lock(m_imagesLock);
        eraseFrom(*m_images, identitiesOf(gone));
    }
    m_services.status.update();
}

/// @param run  neighbours
void ImageSet::removeRun(const IndexList &run)
{
    Q_EMIT imagesAboutToBeRemoved(run.first(), run.last());
    {
        const std::lock_guard lock(m_imagesLock);
        const auto begin = m_imagesFiltered->begin();
        m_imagesFiltered->erase(begin + run.first(), begin + run.last() + 1);
    }
    m_selection.removeIndexes(run);
    Q_EMIT imagesRemoved();
}

void ImageSet::removeSelectedImages()
{
    const ImageIdentities selected = identitiesOf(selectedImages());
    if (selected.empty())
        return;
    const ImageRemoval removal{placesIn(*m_images, selected), placesIn(*m_imagesFiltered, selected),
                               m_filterText};
    removeAndSelectNext(removal.shown.indexes);
    Q_EMIT imagesRemovedByUser(removal);
}

bool ImageSet::removeAgain(const ImageRemoval &removal)
{
    const ImageSelection::Hold hold(m_selection);
    selectImages(removal.images.images);
    const IndexList removed = placesIn(*m_imagesFiltered, identitiesOf(removal.images.images)).indexes;
    if (!removed.isEmpty())
        removeAndSelectNext(removed);
    return !removed.isEmpty();
}

void ImageSet::restoreImages(const ImageRemoval &removal)
{
    const ImageSelection::Hold hold(m_selection);
    Q_EMIT listAboutToBeReset();
    if (isFiltered() && removal.filterText == m_filterText)
        insertAt(*m_imagesFiltered, removal.shown);
    {
        const std::lock_guard lock(m_imagesLock);
        insertAt(*m_images, removal.images);
    }
    m_selection.reset(static_cast<int>(m_imagesFiltered->size()));
    Q_EMIT listReset();
    m_services.status.update();
    selectImages(removal.images.images);
}

void ImageSet::selectImages(const ImageList &images)
{
    const ImageSelection::Hold hold(m_selection);
    const ImageIdentities photos = identitiesOf(images);
    const qsizetype count = placesIn(*m_images, photos).indexes.size();
    if (count == 0)
        return;
    if (placesIn(*m_imagesFiltered, photos).indexes.size() < count)
        disableImageFilters();
    m_selection.selectIndexes(placesIn(*m_imagesFiltered, photos).indexes);
}

/// @param removed  ascending
void ImageSet::removeAndSelectNext(const IndexList &removed)
{
    // The empty selection is not sent: the preview goes from one photo to the next.
    std::optional<ImageSelection::Hold> hold(m_selection);
    ImageList gone;
    for (const int index : removed)
        gone.push_back((*m_imagesFiltered)[static_cast<std::size_t>(index)]);
    const int shown = m_selection.shownImageIndex();
    m_selection.selectNone();
    removeIndexes(removed);
    refreshImageList(Refresh::Full);
    const auto removedBefore = std::lower_bound(removed.begin(), removed.end(), shown) - removed.begin();
    const int next =
        std::min(shown - static_cast<int>(removedBefore), static_cast<int>(m_imagesFiltered->size()) - 1);
    if (next >= 0)
        m_selection.selectIndexes({next});
    hold.reset();
    if (next >= 0)
        Q_EMIT fitToWindowRequested();
    for (const std::shared_ptr<ImageObject> &image : gone)
        image->releasePictures();
}

void ImageSet::moveIndexes(const IndexList &indexes, int toIndex)
{
    const auto shownCount = static_cast<int>(m_imagesFiltered->size());
    toIndex = std::clamp(toIndex, 0, shownCount);
    ImageList moved;
    for (const int index : cleanedIndexes(indexes, m_imagesFiltered->size()))
        moved.push_back((*m_imagesFiltered)[static_cast<std::size_t>(index)]);
    if (moved.empty())
        return;
    ImageList images = *m_images;
    ImageList shown = *m_imagesFiltered;
    // With a filter, the end means the length of the shown list, not that of the whole one.
    const int target = isFiltered() && toIndex < shownCount
                           ? indexIn(images, shown[static_cast<std::size_t>(toIndex)].get())
                           : toIndex;
    moveBefore(images, moved, target);
    moveBefore(shown, moved, toIndex);
    reorder(std::move(images), std::move(shown), moved);
}

void ImageSet::stepSelectedImages(Step step)
{
    const IndexList &indexes = m_selection.selectedIndexes();
    reorder(steppedOrder(*m_images, *m_imagesFiltered, indexes, step),
            steppedOrder(*m_imagesFiltered, *m_imagesFiltered, indexes, step), selectedImages());
}

void ImageSet::sortImages(const ImageList &order)
{
    ImageList images = *m_images;
    ImageList shown = *m_imagesFiltered;
    arrange(images, order);
    arrange(shown, order);
    reorder(std::move(images), std::move(shown), selectedImages());
}

bool ImageSet::restoreOrder(const ImageOrder &order)
{
    ImageList images = *m_images;
    ImageList shown = *m_imagesFiltered;
    arrange(images, order.images);
    arrange(shown, order.filterText == m_filterText ? order.shown : order.images);
    const bool isChange = images != *m_images || shown != *m_imagesFiltered;
    if (isChange)
        setOrder(std::move(images), std::move(shown), selectedImages());
    return isChange;
}

/// On behalf of the user.
void ImageSet::reorder(ImageList images, ImageList shown, const ImageList &selected)
{
    const auto changed = [this](const ImageList &one, const ImageList &oneShown, const ImageList &other,
                                const ImageList &otherShown) {
        return ImageOrder{changedPart(one, other), changedPart(oneShown, otherShown), m_filterText};
    };
    const ImageOrder before = changed(*m_images, *m_imagesFiltered, images, shown);
    const ImageOrder after = changed(images, shown, *m_images, *m_imagesFiltered);
    setOrder(std::move(images), std::move(shown), selected);
    if (!before.images.empty() || !before.shown.empty())
        Q_EMIT orderEdited(before, after);
}

/// The focus stays at its photo.
void ImageSet::setOrder(ImageList images, ImageList shown, const ImageList &selected)
{
    const int focus = m_selection.focusIndex();
    const std::shared_ptr<ImageObject> focusImage =
        focus < 0 ? nullptr : (*m_imagesFiltered)[static_cast<std::size_t>(focus)];
    const ImageIdentities identities = identitiesOf(selected);
    const ImageSelection::Hold hold(m_selection);
    Q_EMIT orderAboutToChange();
    if (isFiltered())
        *m_imagesFiltered = std::move(shown);
    {
        const std::lock_guard lock(m_imagesLock);
        *m_images = std::move(images);
    }
    IndexList selectedIndexes;
    for (std::size_t index = 0; index < m_imagesFiltered->size(); ++index) {
        if (identities.contains((*m_imagesFiltered)[index].get()))
            selectedIndexes.append(static_cast<int>(index));
    }
    m_selection.reorder(selectedIndexes, indexOf(focusImage.get()));
    Q_EMIT orderChanged();
    refreshImageList(Refresh::Full);
}

void ImageSet::focusImageDidChangeTo(int index)
{
    m_wanted = nullptr;
    const auto image = index < 0 ? nullptr : (*m_imagesFiltered)[static_cast<std::size_t>(index)];
    if (!image || image->isLoaded()) {
        show(image);
    } else {
        m_wanted = image;
        show(nullptr);
        m_isLoadAnnounced = true;
        Q_EMIT shownImageAboutToLoad(image);
        loadWanted();
    }
}

void ImageSet::loadWanted()
{
    if (!m_wanted || m_loader.isRunning())
        return;
    m_loading = std::exchange(m_wanted, nullptr);
    m_loader.start([image = m_loading] { return image->loadImageFromDisk(); });
}

void ImageSet::focusLoaded(BackgroundJob::End end)
{
    const std::shared_ptr<ImageObject> image = std::exchange(m_loading, nullptr);
    loadWanted();
    const int focus = m_selection.focusIndex();
    if (end == BackgroundJob::End::Done) {
        if (focus >= 0 && focus == indexOf(image.get()))
            show(image);
        else
            forgetThumbnail(*image);
        return;
    }
    if (!contains(image.get())) // an import has reported it, or the user has removed it
        return;
    removeImages({image});
    refreshImageList(Refresh::Full);
    const QString text =
        tr("Sorry, could not load the image %1. The format is not supported.").arg(image->filename());
    m_services.alerts.run(
        {.style = Alert::Style::Warning, .title = tr("Unsupported image file"), .text = text});
}

void ImageSet::show(const std::shared_ptr<ImageObject> &image)
{
    const bool isLoadAnnounced = std::exchange(m_isLoadAnnounced, false);
    if (image == m_shownImage && !isLoadAnnounced)
        return;
    const std::shared_ptr<ImageObject> former = std::exchange(m_shownImage, image);
    Q_EMIT shownImageChanged(image);
    if (former)
        forgetThumbnail(*former);
}

void ImageSet::forgetThumbnail(ImageObject &image)
{
    if (!contains(&image))
        image.releasePictures();
    else if (!m_imageListIsInBrowserMode && &image != m_shownImage.get())
        image.releaseThumbnail();
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/browser/imagebrowserviewcontroller.h"

#include "app/appcontroller.h"
#include "platform/settings.h"
#include "platform/userdefaults.h"
#include "presets/presetsstore.h"
#include "ui/browser/imagebrowserview.h"
#include "ui/browser/photopromise.h"
#include "ui/browser/privatefolders.h"
#include "ui/browser/promisedfiles.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QScopedValueRollback>

#include <algorithm>

namespace plexa
{
namespace
{

constexpr float kZoomStep = 0.1F;

/// A drag shows thumbnails of this size, so they are kept at least as large; device pixels.
constexpr int kMinThumbnailSide = 200;

/// Points; a photo in it has 96 on its longer side at least, without frame and name.
constexpr double kFirstCellSize = 152;

/// The photos of a list for a grid. Refers to the list, which may change; main thread.
class PhotoSource final : public ImageBrowserSource
{
public:
    /// @param photos      never null
    /// @param thumbnails  outlives this object
    PhotoSource(std::shared_ptr<const ImageList> photos, const Thumbnails &thumbnails)
        : m_photos(std::move(photos))
        , m_thumbnails(thumbnails)
    {
    }

    int count() const override { return static_cast<int>(m_photos->size()); }
    QString filename(int index) const override { return at(index).filename(); }
    QImage thumbnail(int index, ThumbnailKind kind) const override
    {
        return kind == ThumbnailKind::Original ? at(index).thumbnail() : m_thumbnails.thumbnail(at(index));
    }
    /// @param image  an ImageObject
    int indexOf(const void *image) const override
    {
        const auto found = std::find_if(m_photos->begin(), m_photos->end(),
                                        [image](const auto &photo) { return photo.get() == image; });
        return found == m_photos->end() ? -1 : static_cast<int>(found - m_photos->begin());
    }

private:
    const ImageObject &at(int index) const { return *(*m_photos)[static_cast<std::size_t>(index)]; }

    const std::shared_ptr<const ImageList> m_photos;
    const Thumbnails &m_thumbnails;
};

} // namespace

ImageBrowserViewController::ImageBrowserViewController(AppController &app, ImageBrowserView &view,
                                                       UserDefaults &defaults, int threads)
    : m_app(app)
    , m_view(view)
    , m_defaults(defaults)
    , m_threads(threads)
    // Half of the cores: the preview is drawn at the same time.
    , m_thumbnails(app.photoServices().fonts, std::max(1, threads / 2), Thumbnails::Photos::Loaded)
    , m_showsWatermarks(defaults.boolForKey(settings::watermarksOnThumbnails))
    , m_folders(std::make_shared<PrivateFolders>())
    , m_progress(std::make_shared<CopyProgress>(app.statusManager()))
    , m_cleaning([] { PrivateFolders::removeLeftovers(); })
{
    view.setDelegate(this);
    view.setAllowCopying(false);
    followShowOriginalOnMouseOver();
    showList();
    followPresets();
    followZoomAndNames();
    connectAll();
}

ImageBrowserViewController::~ImageBrowserViewController()
{
    m_view.setDelegate(nullptr);
    m_view.setImages(nullptr); // which refer to the thumbnails
    if (m_onClipboard)         // the photos on it need objects that are destroyed after this one
        QGuiApplication::clipboard()->clear();
}

void ImageBrowserViewController::connectAll()
{
    ImageSet &set = m_app.imageSet();
    for (const auto changed :
         {&ImageSet::imagesInserted, &ImageSet::imagesRemoved, &ImageSet::orderChanged, &ImageSet::listReset})
        connect(&set, changed, this, &ImageBrowserViewController::showList);
    connect(&set, &ImageSet::refreshed, this, [this](ImageSet::Refresh refresh) {
        if (refresh == ImageSet::Refresh::Light)
            m_view.refresh();
        else
            showList();
    });
    connect(&set.selection(), &ImageSelection::selectionChanged, this,
            &ImageBrowserViewController::takeSelection);
    connect(&set.selection(), &ImageSelection::focusImageChanged, this,
            &ImageBrowserViewController::takeSelection);
    connect(&m_app, &AppController::stopAllWanted, this, [this] { m_progress->stop(); });
    connect(&m_app, &AppController::imageOutdated, this,
            [this](const std::shared_ptr<ImageObject> &image) { m_thumbnails.outdate(image.get()); });
    connect(&m_app.gathering(), &ImageGathering::imageLoaded, this,
            [this](const std::shared_ptr<ImageObject> &image) { m_thumbnails.outdate(image.get()); });
    connect(&m_thumbnails, &Thumbnails::changed, this,
            [this](const ImageObject *image) { m_view.refreshImage(image); });
    connect(&m_app, &AppController::previewOutdated, this, &ImageBrowserViewController::followPresets);
    connect(&m_app.appliedPresets(), &AppliedPresets::selectedRowsChanged, this,
            &ImageBrowserViewController::followPresets);
    connect(&set, &ImageSet::imageListModeChanged, this, &ImageBrowserViewController::followVisibleImages);
}

// ---- from the set to the grid

void ImageBrowserViewController::showList()
{
    const QScopedValueRollback following(m_isFollowing, true);
    const auto list = m_app.imageSet().imagesFiltered();
    if (m_list != list.get())
        m_view.setImages(std::make_shared<PhotoSource>(list, m_thumbnails));
    m_list = list.get();
    m_view.fullRefresh();
    takeSelection();
    followVisibleImages();
}

void ImageBrowserViewController::visibleImagesDidChangeTo(int first, int end, int side)
{
    m_firstVisible = first;
    m_endVisible = end;
    m_cellSide = side;
    followVisibleImages();
}

/// The visible photos first, then those after and before them.
void ImageBrowserViewController::followVisibleImages()
{
    Thumbnails::Wanted wanted;
    wanted.side = std::max(m_cellSide, kMinThumbnailSide);
    if (m_app.imageSet().imageListIsInBrowserMode()) {
        const ImageList &list = *m_app.imageSet().imagesFiltered();
        const auto at = [&](int index) { return list.begin() + std::min(index, int(list.size())); };
        const auto first = at(m_firstVisible);
        const auto end = at(m_endVisible);
        wanted.visible.assign(first, end);
        wanted.others.assign(end, list.end());
        wanted.others.insert(wanted.others.end(), std::reverse_iterator(first),
                             std::reverse_iterator(list.begin()));
    }
    m_app.gathering().loadFirst(wanted.visible);
    m_thumbnails.setWanted(std::move(wanted));
}

void ImageBrowserViewController::followPresets()
{
    m_thumbnails.setPresets(m_showsWatermarks ? m_app.appliedPresets().presetsOfOneCopyNow()
                                              : std::vector<AppliedPreset>());
}

void ImageBrowserViewController::setShowsWatermarks(bool shows)
{
    m_showsWatermarks = shows;
    m_defaults.setObject(settings::watermarksOnThumbnails, shows);
    followPresets();
    Q_EMIT showsWatermarksChanged(shows);
}

void ImageBrowserViewController::takeSelection()
{
    const ImageSelection &selection = m_app.imageSet().selection();
    const bool hasMoved = m_view.focusImageIndex() != selection.focusIndex();
    m_view.takeSelection(selection.selectedIndexes(), selection.focusIndex());
    if (hasMoved)
        m_view.scrollFocusImageToVisible();
}

// ---- from the grid to the set

void ImageBrowserViewController::reportSelection()
{
    if (m_isFollowing)
        return;
    // The selection's signals return here and find the view unchanged.
    m_app.imageSet().selection().select(m_view.selectionIndexes(), m_view.focusImageIndex());
}

void ImageBrowserViewController::deletePressed()
{
    m_app.imageSet().removeSelectedImages();
}

void ImageBrowserViewController::receivedDraggedFiles(const QStringList &paths)
{
    m_app.addFiles(paths);
}

void ImageBrowserViewController::movedIndexes(const QList<int> &indexes, int toIndex)
{
    m_app.imageSet().moveIndexes(indexes, toIndex);
}

// ---- zoom and names

void ImageBrowserViewController::setBrowserZoomFactor(float zoomFactor)
{
    m_defaults.setObject(settings::imageBrowserZoomFactor, std::clamp(zoomFactor, 0.0F, 1.0F));
    showZoom(zoomFactor);
}

void ImageBrowserViewController::showZoom(float zoomFactor)
{
    m_view.setZoomFactor(zoomFactor);
    Q_EMIT browserZoomFactorChanged(m_view.zoomFactor());
}

void ImageBrowserViewController::gridDidResize()
{
    if (!m_defaults.isStored(settings::imageBrowserZoomFactor))
        showZoom(std::max(m_defaults.floatForKey(settings::imageBrowserZoomFactor),
                          GridGeometry::zoomFactorFor(kFirstCellSize, QSizeF(m_view.contentsRect().size()))));
}

void ImageBrowserViewController::zoomBrowser(Zoom direction)
{
    setBrowserZoomFactor(m_view.zoomFactor() + (direction == Zoom::In ? kZoomStep : -kZoomStep));
}

void ImageBrowserViewController::setShowBrowserFilenames(bool show)
{
    m_view.setShowFilenames(show);
    m_defaults.setObject(settings::imageBrowserShowsNames, show);
    Q_EMIT showBrowserFilenamesChanged(show);
}

void ImageBrowserViewController::followZoomAndNames()
{
    setShowBrowserFilenames(m_defaults.boolForKey(settings::imageBrowserShowsNames));
    if (m_defaults.isStored(settings::imageBrowserZoomFactor))
        showZoom(m_defaults.floatForKey(settings::imageBrowserZoomFactor));
    else
        gridDidResize();
}

void ImageBrowserViewController::followShowOriginalOnMouseOver()
{
    m_view.setShowsOriginalOnMouseOver(m_defaults.boolForKey(settings::browserShowOriginalOnMouseOver));
}

// ---- to other programs

std::unique_ptr<FilePromise> ImageBrowserViewController::promisedFiles(const QList<int> &indexes)
{
    const auto list = m_app.imageSet().imagesFiltered();
    PhotoPromise::Contents contents;
    for (const int index : indexes)
        contents.photos.push_back(list->at(static_cast<std::size_t>(index)));
    contents.presets = m_app.appliedPresets().effectivePresetsNow();
    contents.savingPreset = m_app.presetsStore().quickSavingPreset()->values();
    contents.preservesCreationDate = m_defaults.boolForKey(settings::exportPreserveOriginalFileCreationDate);
    contents.threads = m_threads;
    contents.progress = m_progress;
    // The clipboard may outlive this object.
    const QPointer<ImageBrowserViewController> self(this);
    contents.startSaving = [self, photos = contents.photos](const QString &folder) {
        return self && self->saveInto(photos, folder);
    };
    contents.reportFailures = [self](const QStringList &failures) {
        if (self)
            QMetaObject::invokeMethod(
                self, [self, failures] { Q_EMIT self->copiesFailed(failures); }, Qt::QueuedConnection);
    };
    if (contents.photos.empty() || contents.presets.empty())
        return nullptr;
    return std::make_unique<PhotoPromise>(std::move(contents));
}

/// Makes the folder the user's saving folder.
bool ImageBrowserViewController::saveInto(const std::vector<std::shared_ptr<ImageObject>> &photos,
                                          const QString &folder)
{
    if (m_app.batchSave().isSavingInProgress()) {
        QMetaObject::invokeMethod(
            this,
            [this, folder] { Q_EMIT copiesFailed({tr("%1: photos are being saved already").arg(folder)}); },
            Qt::QueuedConnection);
        return false;
    }
    m_defaults.setObject(settings::saveAllToOneDirectory, true);
    m_defaults.setObject(settings::savingDirectory, folder);
    return m_app.startSaving(photos);
}

void ImageBrowserViewController::copy()
{
    if (m_view.selectionIndexes().isEmpty())
        return;
    auto promise = promisedFiles(m_view.selectionIndexes());
    if (!promise) { // without watermarks the clipboard becomes empty
        QGuiApplication::clipboard()->clear();
        return;
    }
    m_onClipboard = new PromisedFiles(std::move(promise), m_folders, PromisedFiles::Use::Clipboard);
    QGuiApplication::clipboard()->setMimeData(m_onClipboard); // takes ownership
}

} // namespace plexa

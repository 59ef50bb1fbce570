// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/imagegathering.h"

#include "app/statusmanager.h"
#include "images/folderwalk.h"
#include "platform/alerts.h"
#include "platform/filenames.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <chrono>

namespace plexa
{

namespace
{

using Clock = std::chrono::steady_clock;

// The user sees the list grow, and the window stays responsive.
constexpr auto kBatchInterval = std::chrono::milliseconds(50);
constexpr qsizetype kListedFiles = 10;

/// Layered drawings are not photos, even if a codec can read them.
bool isPhotoshopFile(const QString &path)
{
    return fileExtensionOf(path).compare(QLatin1String("psd"), Qt::CaseInsensitive) == 0;
}

} // namespace

ImageGathering::ImageGathering(ImageSet &set, const ImageSetServices &services)
    : m_set(set)
    , m_services(services)
    , m_import(set, services.importThreads)
{
    connect(&m_scan, &BackgroundJob::ended, this, [this] {
        m_hasScanEnded = true;
        if (!m_isAdding)
            scanEnded();
    });
    connect(&m_import, &ImageImport::loaded, this, &ImageGathering::imageLoaded);
    connect(&m_import, &ImageImport::delivered, this, &ImageGathering::imageDelivered);
    connect(&m_import, &ImageImport::finished, this, &ImageGathering::importEnded);
    connect(&set, &ImageSet::imageListModeChanged, this, &ImageGathering::importMissingImages);
    m_imageBrowserUpdateTimer.setInterval(500);
    connect(&m_imageBrowserUpdateTimer, &QTimer::timeout, &set,
            [&set] { set.refreshImageList(ImageSet::Refresh::Light); });
}

ImageGathering::~ImageGathering()
{
    // Both are canceled before either is waited for.
    m_scan.cancel();
    m_import.stop();
}

void ImageGathering::scanImagesAtPaths(const QStringList &paths)
{
    if (paths.isEmpty())
        return;
    QStringList cleanPaths;
    for (const QString &path : paths)
        cleanPaths.append(QDir::cleanPath(QFileInfo(path).absoluteFilePath()));
    m_set.disableImageFilters();
    if (m_isScanning)
        m_waitingPaths += cleanPaths;
    else
        startScan(cleanPaths);
}

void ImageGathering::addImages(const ImageList &images)
{
    m_set.disableImageFilters();
    m_services.status.startOperation(StatusOperation::Counting);
    m_selectsFirst = m_selectsFirst || m_set.images()->empty();
    m_set.addImages(images);
    if (!m_isScanning)
        m_services.status.endOperation(StatusOperation::Counting);
    m_set.refreshImageList(ImageSet::Refresh::Full);
    if (m_set.imageListIsInBrowserMode() && m_set.images()->size() > ImageSet::kMaxImagesInBrowserMode)
        m_set.setImageListModeToBrowser(false);
    importMissingImages();
}

void ImageGathering::startScan(const QStringList &paths)
{
    m_isScanning = true;
    m_hasScanEnded = false;
    m_isStopRequested = false;
    m_nFound = 0;
    m_services.status.startOperation(StatusOperation::Counting);
    m_import.setExpectsMore(true);
    m_scan.start([this, paths] {
        scan(paths);
        return true;
    });
}

/// Hands the files over in batches. Thread of the job.
void ImageGathering::scan(const QStringList &paths)
{
    QStringList batch;
    QStringList notRead;
    Clock::time_point lastBatch; // the first file is handed over at once
    const auto handOver = [&] {
        if (!batch.isEmpty())
            m_scan.post([this, files = std::exchange(batch, {})] { addFound(files); });
        lastBatch = Clock::now();
    };
    FolderWalk::Visitor visitor;
    visitor.found = [&](const QString &path) {
        batch.append(path);
        if (Clock::now() - lastBatch > kBatchInterval)
            handOver();
    };
    visitor.unreadable = [&](const FolderWalk::Unreadable &what) { notRead.append(what.path); };
    visitor.isStopped = [this] { return m_scan.isCanceled(); };
    for (const QString &path : paths) {
        if (m_scan.isCanceled())
            break;
        // A separate walk for each path: the photos of a folder that is given twice are added twice.
        FolderWalk(visitor).scanImagesAtPath(path, true);
    }
    handOver();
    if (!notRead.isEmpty())
        m_scan.post([this, notRead] { m_unsupportedFiles += notRead; });
}

void ImageGathering::addFound(const QStringList &paths)
{
    m_found += paths;
    if (m_isAdding) // a question is open, whose answer decides about these files, too
        return;
    m_isAdding = true;
    m_selectsFirst = m_selectsFirst || m_set.images()->empty();
    addBatch();
    m_isAdding = false;
    m_services.status.setProgress(static_cast<float>(m_nFound), StatusOperation::Counting);
    if (!m_isStopRequested)
        importMissingImages();
    if (m_hasScanEnded)
        scanEnded();
}

void ImageGathering::addBatch()
{
    ImageList batch;
    while (!m_found.isEmpty() && !m_scan.isCanceled()) {
        const QString path = m_found.takeFirst();
        if (isPhotoshopFile(path))
            continue;
        if (isFull(batch.size())) {
            m_set.addImages(std::exchange(batch, {}));
            m_services.status.setProgress(static_cast<float>(m_nFound), StatusOperation::Counting);
            if (!mayGrowBeyondLimit()) {
                m_scan.cancel();
                break;
            }
        }
        batch.push_back(std::make_shared<ImageObject>(path, m_services.photos));
        ++m_nFound;
    }
    m_found.clear();
    m_set.addImages(batch);
}

bool ImageGathering::isFull(std::size_t waiting) const
{
    return m_set.imageListIsInBrowserMode() &&
           m_set.images()->size() + waiting >= ImageSet::kMaxImagesInBrowserMode;
}

/// Asks the user, who may change to Large Batch mode.
bool ImageGathering::mayGrowBeyondLimit()
{
    Alert alert;
    alert.style = Alert::Style::Warning;
    alert.title = tr("Adding too many images in the Small Batch mode!");
    alert.text = tr("You are importing over %1 images in the Small Batch mode. This may slow down your "
                    "computer. Please either switch to the Large Batch mode, or import only %1 images.")
                     .arg(ImageSet::kMaxImagesInBrowserMode);
    alert.buttons = {tr("Switch to the Large Batch mode"),
                     tr("Import only %1 images").arg(ImageSet::kMaxImagesInBrowserMode)};
    alert.escapeButton = 1;
    if (m_services.alerts.run(alert).button != 0)
        return false;
    m_set.setImageListModeToBrowser(false);
    return true;
}

void ImageGathering::scanEnded()
{
    m_isScanning = false;
    m_services.status.endOperation(StatusOperation::Counting);
    m_import.setExpectsMore(false);
    m_set.refreshImageList(ImageSet::Refresh::Full);
    // After the stop button, no further operation begins.
    if (!m_isStopRequested)
        importMissingImages();
    if (!m_isImportingImages)
        reportUnsupportedFiles();
    if (!m_waitingPaths.isEmpty() && !m_isScanning)
        startScan(std::exchange(m_waitingPaths, {}));
    Q_EMIT scanFinished();
}

void ImageGathering::importMissingImages()
{
    if (!m_set.imageListIsInBrowserMode()) {
        m_isImportWanted = false;
        m_import.stop();
        return;
    }
    if (m_isImportingImages) {
        // It may have read the list for the last time already.
        m_isImportWanted = m_isImportWanted || !m_import.loadJoined();
        return;
    }
    m_isImportingImages = true;
    m_nImported = 0;
    m_services.status.startOperation(StatusOperation::Importing);
    m_imageBrowserUpdateTimer.start();
    m_import.start();
}

void ImageGathering::importRestoredImages()
{
    if (m_isImportingImages && m_set.imageListIsInBrowserMode())
        m_isImportWanted = true;
    else
        importMissingImages();
}

void ImageGathering::stopImportingImages()
{
    m_isStopRequested = true;
    m_isImportWanted = false;
    m_waitingPaths.clear();
    m_scan.cancel();
    m_import.stop();
}

void ImageGathering::imageDelivered(const std::shared_ptr<ImageObject> &image, ImageImport::Outcome outcome)
{
    if (!m_set.contains(image.get())) {
        image->releasePictures();
        return;
    }
    if (outcome == ImageImport::Outcome::Skipped)
        return;
    if (outcome == ImageImport::Outcome::Unreadable) {
        m_unsupportedFiles.append(image->path());
        m_set.removeImages({image});
    } else {
        ++m_nImported;
        // Photos in an empty set show at once what the watermark looks like.
        if (std::exchange(m_selectsFirst, false) && m_set.selection().selectedIndexes().isEmpty())
            m_set.selectAndPreviewImageWithIndex(0);
    }
    // The position of the photo among those that could be loaded.
    const auto index = static_cast<float>(m_nImported) - 1;
    const float progress = m_set.images()->empty() ? 0 : index / static_cast<float>(m_set.images()->size());
    m_services.status.setProgress(std::clamp(progress, 0.0F, 1.0F), StatusOperation::Importing);
}

void ImageGathering::importEnded()
{
    if (std::exchange(m_isImportWanted, false)) {
        m_nImported = 0; // the new import counts all photos; loaded ones cost no time
        m_import.start();
        return;
    }
    m_isImportingImages = false;
    m_imageBrowserUpdateTimer.stop();
    m_services.status.endOperation(StatusOperation::Importing);
    m_set.refreshImageList(ImageSet::Refresh::Full);
    if (!m_isScanning) // else there may be more
        reportUnsupportedFiles();
    Q_EMIT importFinished();
}

void ImageGathering::reportUnsupportedFiles()
{
    const QStringList files = std::exchange(m_unsupportedFiles, {});
    if (files.isEmpty())
        return;
    QString text = files.mid(0, kListedFiles).join(QLatin1Char('\n'));
    if (files.size() > kListedFiles)
        text += tr("\n  ...and %1 more...").arg(files.size() - kListedFiles);
    text += tr("\n\nPossible reasons:\n • unsupported file format\n • insufficient file access "
               "permissions");
    m_services.alerts.run({.style = Alert::Style::Warning,
                           .title = tr("Cannot open the following %1 file(s):").arg(files.size()),
                           .text = text});
}

} // namespace plexa

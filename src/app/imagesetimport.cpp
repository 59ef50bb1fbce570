// SPDX-License-Identifier: GPL-3.0-or-later

// How photos come into the working set: the scan of what was dropped, the limit, the import.

#include "app/imageset.h"
#include "app/statusmanager.h"
#include "imageio/imagefiletype.h"
#include "platform/alerts.h"
#include "platform/filenames.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace plexa
{

namespace
{

constexpr qsizetype kListedFiles = 10;

/// Layered drawings are not photos, even where something could read them.
bool isPhotoshopFile(const QString &path)
{
    return fileExtensionOf(path).compare(QLatin1String("psd"), Qt::CaseInsensitive) == 0;
}

} // namespace

void ImageSet::scanImagesAtPaths(const QStringList &paths)
{
    if (paths.isEmpty())
        return;
    QStringList cleanPaths;
    for (const QString &path : paths)
        cleanPaths.append(QDir::cleanPath(QFileInfo(path).absoluteFilePath()));
    disableImageFilters();
    if (m_isScanning)
        m_waitingPaths += cleanPaths;
    else
        startScan(cleanPaths);
}

void ImageSet::startScan(const QStringList &paths)
{
    m_isScanning = true;
    m_hasScanEnded = false;
    m_isStopRequested = false;
    m_nFound = 0;
    m_services.status.startOperation(StatusOperation::Counting);
    m_scan.start(paths);
}

void ImageSet::takeFound(const QStringList &paths)
{
    m_found += paths;
    if (m_isAdding) // while a question is open the next files have to wait
        return;
    m_isAdding = true;
    ImageList batch;
    while (!m_found.isEmpty() && !m_scan.isStopped()) {
        const QString path = m_found.takeFirst();
        if (isPhotoshopFile(path))
            continue;
        if (isFull(batch.size())) {
            append(std::exchange(batch, {}));
            m_services.status.setProgress(static_cast<float>(m_nFound), StatusOperation::Counting);
            if (!mayGrowBeyondLimit()) {
                m_scan.stop();
                break;
            }
        }
        batch.push_back(std::make_shared<ImageObject>(path, m_services.photos));
        ++m_nFound;
    }
    m_found.clear();
    append(batch);
    m_isAdding = false;
    m_services.status.setProgress(static_cast<float>(m_nFound), StatusOperation::Counting);
    if (m_hasScanEnded)
        scanEnded();
}

/// They are told of with the files that cannot be opened.
void ImageSet::takeUnreadable(const QStringList &paths)
{
    m_unsupportedFiles += paths;
}

bool ImageSet::isFull(std::size_t waiting) const
{
    return m_imageListIsInBrowserMode && m_images->size() + waiting >= kMaxImagesInBrowserMode;
}

/// Asks; the answer may be to change to Large Batch mode.
bool ImageSet::mayGrowBeyondLimit()
{
    Alert alert;
    alert.style = Alert::Style::Warning;
    alert.title = tr("Adding too many images in the Small Batch mode!");
    alert.text = tr("You are importing over %1 images in the Small Batch mode. This may slow down your "
                    "computer. Please either switch to the Large Batch mode, or import only %1 images.")
                     .arg(kMaxImagesInBrowserMode);
    alert.buttons = {tr("Switch to the Large Batch mode"),
                     tr("Import only %1 images").arg(kMaxImagesInBrowserMode)};
    alert.escapeButton = 1;
    if (m_services.alerts.run(alert).button != 0)
        return false;
    setImageListModeToBrowser(false);
    return true;
}

void ImageSet::scanEnded()
{
    m_isScanning = false;
    m_services.status.endOperation(StatusOperation::Counting);
    refreshImageList(Refresh::Full);
    // Who has pressed the stop button does not want the next thing to begin.
    if (!m_isStopRequested)
        importMissingImages();
    if (!m_isImportingImages)
        reportUnsupportedFiles();
    if (!m_waitingPaths.isEmpty() && !m_isScanning)
        startScan(std::exchange(m_waitingPaths, {}));
    Q_EMIT scanFinished();
}

bool ImageSet::addImageWithPath(const QString &path)
{
    if (!isImageFile(path) || isPhotoshopFile(path) || (isFull(0) && !mayGrowBeyondLimit()))
        return false;
    addImage(path, {});
    return true;
}

void ImageSet::addImage(const QString &path, const QString &pathToImportFrom)
{
    const auto image = std::make_shared<ImageObject>(path, m_services.photos);
    image->setPathToImportFrom(pathToImportFrom);
    append({image});
}

void ImageSet::importMissingImages()
{
    if (!m_imageListIsInBrowserMode) {
        m_isImportWanted = false;
        m_import.stop();
        return;
    }
    if (m_isImportingImages) {
        // It may have looked at the list for the last time already.
        m_isImportWanted = true;
        return;
    }
    m_isImportingImages = true;
    m_nImported = 0;
    m_services.status.startOperation(StatusOperation::Importing);
    m_imageBrowserUpdateTimer.start();
    m_import.start();
}

void ImageSet::stopImportingImages()
{
    m_isStopRequested = true;
    m_isImportWanted = false;
    m_waitingPaths.clear();
    m_scan.stop();
    m_import.stop();
}

void ImageSet::imageDelivered(const std::shared_ptr<ImageObject> &image, ImageImport::Outcome outcome)
{
    if (outcome == ImageImport::Outcome::PassedOver || !contains(image.get()))
        return;
    if (outcome == ImageImport::Outcome::Unreadable) {
        m_unsupportedFiles.append(image->path());
        removeImages({image});
    } else {
        ++m_nImported;
    }
    // The place of the photo among those that were found good.
    const auto index = static_cast<float>(m_nImported) - 1;
    const float progress = m_images->empty() ? 0 : index / static_cast<float>(m_images->size());
    m_services.status.setProgress(std::clamp(progress, 0.0F, 1.0F), StatusOperation::Importing);
}

void ImageSet::finishedImportingImages()
{
    if (std::exchange(m_isImportWanted, false)) {
        m_nImported = 0; // it counts from the first photo again; those that are loaded take no time
        m_import.start();
        return;
    }
    m_isImportingImages = false;
    m_imageBrowserUpdateTimer.stop();
    m_services.status.endOperation(StatusOperation::Importing);
    refreshImageList(Refresh::Full);
    reportUnsupportedFiles();
    Q_EMIT importFinished();
}

void ImageSet::reportUnsupportedFiles()
{
    const QStringList files = std::exchange(m_unsupportedFiles, {});
    if (files.isEmpty())
        return;
    Alert alert;
    alert.style = Alert::Style::Warning;
    alert.title = tr("Cannot open the following %1 file(s):").arg(files.size());
    alert.text = files.mid(0, kListedFiles).join(QLatin1Char('\n'));
    if (files.size() > kListedFiles)
        alert.text += tr("\n  ...and %1 more...").arg(files.size() - kListedFiles);
    alert.text += tr("\n\nPossible reasons:\n • unsupported file format\n • insufficient file access "
                     "permissions");
    m_services.alerts.run(alert);
}

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/imageimport.h"
#include "app/imagescan.h"
#include "app/imageset.h"

#include <QTimer>

namespace plexa
{

/// How photos join the working set: it walks over files and folders, applies the limit of Small Batch mode,
/// loads the photos in that mode, removes the files that cannot be read, and reports them. All of it goes on
/// in the background. Main thread.
class ImageGathering final : public QObject
{
    Q_OBJECT

public:
    /// @param set  outlives this object, like the services
    ImageGathering(ImageSet &set, const ImageSetServices &services);
    /// Waits for the photos in work.
    ~ImageGathering() override;

    /// Adds the picture files of these paths, folders with all that is below them, then imports them. Paths
    /// that are added during a scan wait until it has ended.
    void scanImagesAtPaths(const QStringList &paths);
    bool isScanning() const { return m_isScanning; }

    /// In Small Batch mode, begins to load what is not loaded; in Large Batch mode, stops that.
    void importMissingImages();
    bool isImportingImages() const { return m_isImportingImages; }

    /// Ends scanning and importing at the next file. What was added stays.
    void stopImportingImages();

Q_SIGNALS:
    void scanFinished();
    void importFinished();

private:
    void startScan(const QStringList &paths);
    void addFound(const QStringList &paths);
    void addBatch();
    bool isFull(std::size_t waiting) const;
    bool mayGrowBeyondLimit();
    void scanEnded();

    void imageDelivered(const std::shared_ptr<ImageObject> &image, ImageImport::Outcome outcome);
    void importEnded();
    void reportUnsupportedFiles();

    ImageSet &m_set;
    const ImageSetServices m_services;

    bool m_isScanning = false;
    bool m_isAdding = false;        // a question may be open
    bool m_hasScanEnded = false;    // its last files may still wait for that question
    bool m_isStopRequested = false; // by the user, for everything in progress
    QStringList m_found;            // not added yet
    QStringList m_waitingPaths;     // of the next scan
    std::size_t m_nFound = 0;

    bool m_isImportingImages = false;
    bool m_isImportWanted = false; // once more when the running one has ended
    std::size_t m_nImported = 0;
    QStringList m_unsupportedFiles;
    QTimer m_imageBrowserUpdateTimer;

    ImageImport m_import;
    ImageScan m_scan;
};

} // namespace plexa

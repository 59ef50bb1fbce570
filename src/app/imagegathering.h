// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/imageimport.h"
#include "app/imageset.h"

#include <QTimer>

namespace plexa
{

/// Adds photos to the working set in the background: it walks over files and folders, applies the limit of
/// Small Batch mode, in that mode loads the photos meanwhile, and removes and reports the files that cannot
/// be read. The first photo in an empty set is selected when it is loaded. Main thread.
class ImageGathering final : public QObject
{
    Q_OBJECT

public:
    /// @param set  outlives this object, like the services
    ImageGathering(ImageSet &set, const ImageSetServices &services);
    /// Waits for the photos in work.
    ~ImageGathering() override;

    /// Adds the picture files of these paths and of all folders below them, then imports them. Paths that are
    /// added during a scan wait for its end.
    void scanImagesAtPaths(const QStringList &paths);
    /// Adds photos as they are, without a check of their types, then imports them. More than Small Batch mode
    /// holds change to Large Batch mode without a question.
    void addImages(const ImageList &images);
    bool isScanning() const { return m_isScanning; }

    /// In Small Batch mode loads the photos that are not loaded; in Large Batch mode stops that.
    void importMissingImages();
    /// The same for photos that have come back: a running import may have passed them.
    void importRestoredImages();
    bool isImportingImages() const { return m_isImportingImages; }

    /// Loads these photos before the others, the first ones first.
    void loadFirst(const ImageList &photos) { m_import.loadFirst(photos); }

    /// Ends scanning and importing at the next file. Added photos stay.
    void stopImportingImages();

Q_SIGNALS:
    /// A photo of the set can be shown.
    void imageLoaded(const std::shared_ptr<plexa::ImageObject> &image);
    void scanFinished();
    void importFinished();

private:
    void startScan(const QStringList &paths);
    void scan(const QStringList &paths);
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
    bool m_selectsFirst = false;    // the first photo that can be loaded
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
    BackgroundJob m_scan;
};

} // namespace plexa

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/thumbnails.h"
#include "ui/browser/imagebrowserdelegate.h"

#include <QMimeData>
#include <QObject>
#include <QPointer>

#include <thread>
#include <vector>

namespace plexa
{

class AppController;
class CopyProgress;
class ImageBrowserView;
class ImageObject;
class PrivateFolders;
class UserDefaults;

/// Connects the grid and the working set: the grid shows the set's photos, the set follows the user's
/// actions, and both share one selection. Main thread.
class ImageBrowserViewController final : public QObject, public ImageBrowserDelegate
{
    Q_OBJECT

public:
    /// All of them outlive this object. Reads zoom and names from the settings.
    ImageBrowserViewController(AppController &app, ImageBrowserView &view, UserDefaults &defaults,
                               int threads);
    ~ImageBrowserViewController() override;

    /// Clamped to 0..1 and stored in the settings.
    void setBrowserZoomFactor(float zoomFactor);
    enum class Zoom { In, Out };
    /// One step.
    void zoomBrowser(Zoom direction);
    void setShowBrowserFilenames(bool show);
    /// Until the user has chosen a zoom, the thumbnails keep a size that shows what is on them.
    void gridDidResize();
    bool showsWatermarks() const { return m_showsWatermarks; }
    /// On the thumbnails; stored in the settings.
    void setShowsWatermarks(bool shows);
    /// The pictures of the grid.
    const Thumbnails &thumbnails() const { return m_thumbnails; }
    /// Read settings that may have changed.
    void followZoomAndNames();
    void followShowOriginalOnMouseOver();

    // ImageBrowserDelegate
    void selectionDidChangeTo(const QList<int> &) override { reportSelection(); }
    void focusImageDidChangeTo(int, int) override { reportSelection(); }
    void deletePressed() override;
    void receivedDraggedFiles(const QStringList &paths) override;
    void movedIndexes(const QList<int> &indexes, int toIndex) override;
    void changedZoomFactorTo(float zoomFactor) override { setBrowserZoomFactor(zoomFactor); }
    void visibleImagesDidChangeTo(int first, int end, int side) override;
    bool shouldDragPromisedFiles() override { return true; }
    std::unique_ptr<FilePromise> promisedFiles(const QList<int> &indexes) override;
    void copy() override;

Q_SIGNALS:
    /// For the slider and the zoom buttons; emitted even if unchanged.
    void browserZoomFactorChanged(float zoomFactor);
    void showBrowserFilenamesChanged(bool shown);
    void showsWatermarksChanged(bool shown);
    /// Files for a drag or the clipboard could not be written: "path: reason", one line for each. Emitted
    /// from the event loop, so that a message may be shown.
    void copiesFailed(const QStringList &failures);

private:
    void connectAll();
    void showZoom(float zoomFactor);
    void showList();
    void followPresets();
    void followVisibleImages();
    void reportSelection();
    void takeSelection();
    bool saveInto(const std::vector<std::shared_ptr<ImageObject>> &photos, const QString &folder);

    AppController &m_app;
    ImageBrowserView &m_view;
    UserDefaults &m_defaults;
    const int m_threads;
    Thumbnails m_thumbnails;
    bool m_showsWatermarks;
    int m_firstVisible = 0; // of the shown photos
    int m_endVisible = 0;
    int m_cellSide = 0;                              // device pixels
    const std::shared_ptr<PrivateFolders> m_folders; // for the clipboard
    QPointer<QMimeData> m_onClipboard;
    const std::shared_ptr<CopyProgress> m_progress;
    const std::jthread m_cleaning;
    const void *m_list = nullptr; // shown by the view
    bool m_isFollowing = false;   // the view reports our own change
};

} // namespace plexa
